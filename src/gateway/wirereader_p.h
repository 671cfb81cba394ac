#pragma once

#include <suite/action/parameters.h>

#include <QByteArray>
#include <QCborStreamReader>
#include <QString>

#include <functional>
#include <limits>

namespace Gateway {

/// Reads one message, as any peer may send it. The first fault counts: what is read after it is empty. Costs no more
/// memory than a small multiple of the message, whatever that says.
class WireReader
{
public:
    /// `payload` must outlive the reader.
    explicit WireReader(const QByteArray& payload) : m_reader(payload), m_size(payload.size()) {}

    /// Calls `member` for each key; it reads the value.
    void map(const std::function<void(const std::string& key)>& member);
    void map(ParameterMap& target);
    qint64 integer(qint64 min, qint64 max = std::numeric_limits<qint64>::max());
    bool flag();
    std::string text();
    void skip();

    /// What is wrong and where; empty while nothing is. Bytes after the message are wrong too.
    QString fault();

private:
    bool take(bool isExpected, const char* expected);
    template <typename Bytes>
    Bytes bytes();
    double real();
    template <typename T>
    std::vector<T> list();
    std::vector<Parameters> parameters();
    Parameters nested();
    bool enter(QCborStreamReader::Type type);
    void leave();
    bool storeList(ParameterMap& target, const std::string& key);
    void store(ParameterMap& target, const std::string& key);
    void fail(const QString& text);

    QCborStreamReader m_reader;
    const qint64 m_size;
    int m_depth = 0;
    int m_values = 0;
    QString m_fault;
};

} // namespace Gateway
