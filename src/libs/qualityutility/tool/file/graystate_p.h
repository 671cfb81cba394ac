#pragma once

#include "jsoncolumn_p.h"

#include <QJsonObject>

namespace Model {
class GrayDetailPara;
class GrayEffectPara;
} // namespace Model

/// The gray state's two sections of the fine-gray configuration.
namespace GrayState {

std::vector<JsonMember> effectMembers();
std::vector<JsonMember> detailMembers();

QJsonObject toJson(const Model::GrayEffectPara& effect);
QJsonObject toJson(const Model::GrayDetailPara& detail);
void read(const QJsonObject& object, Model::GrayEffectPara& effect);
void read(const QJsonObject& object, Model::GrayDetailPara& detail);
/// The peak values alone: taken only when they are marked valid. The mark is set here and never cleared.
void readPeak(const QJsonObject& object, Model::GrayDetailPara& detail);

} // namespace GrayState
