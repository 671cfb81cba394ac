#include "cabinetsenderbase.h"

namespace CabinetSenderSpace {

CabinetSenderBase::CabinetSenderBase(QObject* parent) : QObject(parent) {}

CabinetSenderBase::~CabinetSenderBase() = default;

} // namespace CabinetSenderSpace
