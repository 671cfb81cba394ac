#pragma once

#include <suite/action/suite_action_export.h>

#include <boost/any.hpp>

#include <exception>
#include <string>
#include <unordered_map>

/// Type-erased values by string key. The first value under a key wins. Any thread, each map by one at a time; maps that
/// nobody changes may be read by many.
class SUITE_ACTION_EXPORT ParameterMap
{
public:
    /// Stores a copy of `value` under `key` and returns true; returns false and changes nothing when the key is taken.
    template <typename T>
    bool insert(const std::string& key, const T& value)
    {
        return m_items.try_emplace(key, value).second;
    }

    /// A copy of the value of type `T` under `key`. Never throws: for an absent key or another type it writes the
    /// critical line "Parameters get error, key:" with the key to Qt's default category and returns `T()`.
    template <typename T>
    T get(const char* key) const
    {
        try {
            return boost::any_cast<T>(at(key));
        } catch (const std::exception&) {
            logGetError(key);
            return T();
        }
    }

    /// The value of type `T` under `key`, or null when there is none; owned by the map.
    template <typename T>
    const T* find(const std::string& key) const
    {
        const auto item = m_items.find(key);
        return item == m_items.end() ? nullptr : boost::any_cast<T>(&item->second);
    }

    /// Whether a value of any type stands under `key`. Logs nothing.
    bool contains(const std::string& key) const { return m_items.count(key) != 0; }

    /// All values, in no particular order; for transports, which put them into words of their own.
    const std::unordered_map<std::string, boost::any>& items() const { return m_items; }

private:
    /// Throws std::out_of_range ("No item found by the input KEY.") for an absent key.
    const boost::any& at(const char* key) const;
    static void logGetError(const char* key);

    std::unordered_map<std::string, boost::any> m_items;
};

/// What a device action is called with and answered with: three independent maps. Arguments are the request's or the
/// reply's data; options steer one call ("timeout", an int in seconds); attributes are free for a host's transport.
class SUITE_ACTION_EXPORT Parameters
{
public:
    /// Valid as long as the parameters. @{
    ParameterMap& arguments() { return m_arguments; }
    const ParameterMap& arguments() const { return m_arguments; }
    ParameterMap& options() { return m_options; }
    const ParameterMap& options() const { return m_options; }
    ParameterMap& attributes() { return m_attributes; }
    const ParameterMap& attributes() const { return m_attributes; }
    /// @}

    /// ParameterMap::insert of the arguments.
    template <typename T>
    bool insert(const std::string& key, const T& value)
    {
        return m_arguments.insert(key, value);
    }

    /// ParameterMap::get of the arguments.
    template <typename T>
    T get(const char* key) const
    {
        return m_arguments.get<T>(key);
    }

private:
    ParameterMap m_arguments;
    ParameterMap m_options;
    ParameterMap m_attributes;
};
