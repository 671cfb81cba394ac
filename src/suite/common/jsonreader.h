#pragma once

#include <suite/common/result.h>

#include <QJsonArray>
#include <QJsonObject>
#include <QJsonValue>

#include <limits>

namespace Common {

/// A JSON value in a fault's words: 3.5, "text", null, "an array", "an object", "nothing" for one that is not there.
SUITE_COMMON_EXPORT QString describeJson(const QJsonValue& value);

/// Parses a document whose root is an object. `subject` begins the fault, which names line and column:
/// "wall document w.json: line 2, column 15: not JSON: ...".
SUITE_COMMON_EXPORT Result<QJsonObject> parseJsonObject(const QByteArray& text, const QString& subject);

/// A place in a JSON document, read with what is expected there.
///
/// All places of one document share its fault: the first thing that is not as expected is kept, with its path
/// ("devices[2].cabinets[0].cid: expected ..., found ..."), and from then on reading goes on with defaults, so a loop
/// looks at hasFault() and a whole document is read without a test at each value. A place refers to the one it was
/// taken from, which must outlive it; paths are put into words only for the fault.
class SUITE_COMMON_EXPORT JsonReader
{
public:
    /// The root of a document; the fault will be left in `fault`, which must outlive the reader.
    JsonReader(const QJsonObject& root, std::optional<Fault>& fault);

    /// Whether the document has had its first fault, here or at another place.
    bool hasFault() const { return m_fault->has_value(); }
    /// What stands here, of whatever type; undefined where nothing does. Valid as long as this place.
    const QJsonValue& value() const { return m_value; }
    /// Whether nothing stands here; a null is something.
    bool isMissing() const { return m_value.isUndefined(); }
    /// "devices[2].cabinets[0]"; empty for the root.
    QString path() const;

    /// A member of this object; missing where there is none, or where this is no object. `key` is a literal: it is not
    /// copied.
    JsonReader member(const char* key) const;
    /// An element of this array, from 0; missing where there is none.
    JsonReader element(int index) const;
    /// The number of elements. Expects an array; 0 for what is none.
    int count() const;

    /// Each of these expects a value of its type and gives an empty one, false or 0 where there is another; a missing
    /// one is a fault too, unless there is a `fallback`. @{
    const JsonReader& object() const;
    QString text() const;
    bool flag() const;
    bool flag(bool fallback) const { return isMissing() ? fallback : flag(); }
    /// @}
    /// A finite number from `min` to `max`.
    double number(double min = -std::numeric_limits<double>::max(),
                  double max = std::numeric_limits<double>::max()) const;
    /// A whole number from `min` to `max`. @{
    int integer(int min = std::numeric_limits<int>::min(), int max = std::numeric_limits<int>::max()) const;
    int integer(int min, int max, int fallback) const { return isMissing() ? fallback : integer(min, max); }
    /// @}

    /// Leaves the document's fault, unless it has one: what was expected here.
    void expect(const QString& expected) const;
    /// The same for what is wrong in another way: "cabinet 1 is listed twice".
    void refuse(const QString& reason) const;

private:
    JsonReader(const JsonReader& parent, QLatin1String key, int index, QJsonValue value);
    void leave(const QString& expected, const QString& found) const;

    const JsonReader* m_parent = nullptr;
    QLatin1String m_key;
    int m_index = -1; ///< in an array; -1 elsewhere
    QJsonValue m_value;
    std::optional<Fault>* m_fault;
};

} // namespace Common
