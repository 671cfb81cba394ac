#pragma once

#include <suite/serialize/suite_serialize_export.h>

#include <QObject>
#include <QVariantMap>

/// Objects to maps and back, by their Qt properties.
namespace Xq::Serialize {

/// Base of objects that are kept as a map of their Qt properties: name to value, QObject's own "objectName" left out.
/// A nested object is a property of type QVariant whose accessors pack and unpack the nested object's own map.
///
/// The attribute is a number that travels with an object to the objects nested in it, for serialisers with several
/// layouts. This one has a single layout and ignores it. Used on the object's own thread.
class SUITE_SERIALIZE_EXPORT Serializable : public QObject
{
    Q_OBJECT

public:
    /// A child of `parent`, which deletes it; without one it is its maker's.
    explicit Serializable(Serializable* parent = nullptr);

    /// Handed to the objects nested in this one when they are read or written; 0 by default. @{
    quint32 attribute() const { return m_attribute; }
    void setAttribute(quint32 attribute) { m_attribute = attribute; }
    /// @}

    /// The properties of `object`, with their values; an empty map for null. Lists and maps are those of variants, keys
    /// as decimal text, so that the map goes through a JSON document and back without loss (doubles to their precision,
    /// integers to 53 bits).
    static QVariantMap serialize(const Serializable* object, quint32 attribute);
    /// Sets the properties that `map` names; the others stay. A value is taken when it has the property's type, or is a
    /// number that the property's number type holds without loss, or a list of numbers for a list of integers, or a map
    /// of texts for texts by number. An unknown name and a value that does not fit are skipped with a warning in the Qt
    /// log, and the rest is taken. Returns whether everything was taken, by nested objects too.
    bool deserialize(const QVariantMap& map, quint32 attribute);

    /// A nested object's map as the value of the property that stands for it, and back. Anything but a map unpacks to
    /// an empty one, with a warning. @{
    static QVariant packObjByAttribute(const QVariantMap& map, quint32 attribute);
    static QVariantMap unpackObjByAttribute(const QVariant& value, quint32 attribute);
    /// @}

protected:
    /// Copies the attribute only: the copy has no parent and no name.
    Serializable(const Serializable& other);

    /// Sets a nested object from its packed value; a missing one is created as a child of this object. An empty value
    /// changes nothing. What does not fit is deserialize()'s to report.
    template <typename Member>
    void deserializeMember(const QVariant& value, Member*& member)
    {
        const QVariantMap map = unpackObjByAttribute(value, attribute());
        if (map.isEmpty())
            return;
        if (!member)
            member = new Member(this);
        member->deserialize(map, attribute());
    }

private:
    quint32 m_attribute = 0;
};

} // namespace Xq::Serialize
