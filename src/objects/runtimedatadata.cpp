#include "runtimedatadata.h"

RuntimeDataData::~RuntimeDataData() = default;

RuntimeDataData* RuntimeDataData::clone() const
{
    return new RuntimeDataData(*this);
}

RuntimeDataData& RuntimeDataData::operator=(const RuntimeDataData& other)
{
    posPCent = other.posPCent;
    posPulse = other.posPulse;
    networkStat = other.networkStat;
    networkErrorStat = other.networkErrorStat;
    motorDiagnostic = other.motorDiagnostic;
    return *this;
}

bool RuntimeDataData::operator==(const RuntimeDataData& other) const
{
    return posPCent == other.posPCent && posPulse == other.posPulse
        && networkStat == other.networkStat && networkErrorStat == other.networkErrorStat
        && motorDiagnostic == other.motorDiagnostic;
}

void RuntimeDataData::update(const RuntimeDataData& other)
{
    *this = other;
}

void RuntimeDataData::erase()
{
    posPCent = 0;
    posPulse = 0;
    networkStat.clear();
    networkErrorStat.clear();
    motorDiagnostic.clear();
}
