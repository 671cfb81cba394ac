#pragma once

#include <QJsonObject>
#include <QString>
#include <QStringList>

#include <vector>

/// What a picture-quality document may hold, for showing and checking one.
namespace DocumentSchema {

enum class Type { Points, Series, Integers, Numbers, Bool, Int, Number, Text, Point, Object };

struct Member
{
    QLatin1String key;
    Type type;
    double min = -1e300; ///< of numbers, and of the elements of number lists
    double max = 1e300;
    const std::vector<Member>* members = nullptr; ///< of an object
    int lengthGroup = 0;                          ///< lists of one group have equal lengths; 0: alone
};

struct Document
{
    QString name;
    std::vector<QLatin1String> signs; ///< any of these keys tells the kind
    std::vector<Member> members;
};

/// The kind of a document, told by its keys; null when none of them is known.
const Document* kindOf(const QJsonObject& root);

/// What is wrong with a document, each with the key's path; empty when nothing is.
QStringList faultsOf(const QJsonObject& root, const Document& document);

/// One line per member that is there: counts, ranges and switches rather than contents.
QStringList summaryOf(const QJsonObject& root, const Document& document);

} // namespace DocumentSchema
