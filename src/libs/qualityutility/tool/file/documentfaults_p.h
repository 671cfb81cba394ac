#pragma once

#include "jsoncolumn_p.h"

#include <QJsonObject>
#include <QStringList>

/// What is wrong with an object that may hold these members, each with the key's path.
QStringList documentFaults(const QJsonObject& root, const std::vector<JsonMember>& members);
