#pragma once

#include "jsoncolumn_p.h"

#include <QJsonObject>

namespace Model {
class MagicGrayCoeffs;
class MagicGrayParam;
} // namespace Model

/// Magic gray: a section of the fine-gray configuration; its measurements also stand at the root of the cache.
namespace MagicGray {

/// Of the section, and the thirteen measurement members alone.
std::vector<JsonMember> members();
std::vector<JsonMember> measureMembers();

QJsonObject toJson(const Model::MagicGrayCoeffs& coeffs);
/// The thirteen measurement members alone.
void writeMeasures(const Model::MagicGrayCoeffs& coeffs, QJsonObject& object);
void read(const QJsonObject& object, Model::MagicGrayCoeffs& coeffs, Model::MagicGrayParam& param);

} // namespace MagicGray
