#pragma once

#include "output.h"

#include <suite/service/walldocument.h>

#include <qualityutility/tool/sender4th/cabinetsenderbase.h>

/// Which wall a command works on, and which of its cabinets.
struct WallArgument
{
    std::string file; ///< empty: the built-in example wall
    std::vector<std::string> devices;
    std::vector<std::string> cabinets; ///< identifiers and ranges such as 5-9; empty: all
};

/// A wall that has been read and entered into the registry.
struct OpenWall
{
    QString name;
    Service::Wall wall;
};

/// Reads the wall's document and enters it into the registry. Throws CommandError: no input or bad data.
OpenWall openWall(const WallArgument& argument);

/// Reads identifiers and ranges ("7", "5-9"). Throws CommandError: usage.
std::vector<unsigned long long> parseCabinets(const std::vector<std::string>& texts);

/// An identifier as a JSON number, or as a string where a JSON number would not be exact.
QJsonValue cidToJson(unsigned long long cid);

/// The targets that the argument names: all devices and cabinets unless it names some. Throws CommandError: usage, for
/// a device or cabinet that the wall does not have; bad data, for a wall without devices.
CabinetSenderSpace::CabinetTargetMap selectTargets(const OpenWall& wall, const WallArgument& argument);
