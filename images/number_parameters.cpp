#include "images/number_parameters.h"

#include "plugin/host_data.h"

namespace corvane {

double ReadNumber(const FM_DataVect& parameters, std::int32_t index) {
    return Host(FM_FixPt_AsFloat, Host(FM_DataVect_AtAsNumber, &parameters, index));
}

std::int32_t ReadInteger(const FM_DataVect& parameters, std::int32_t index) {
    return Host(FM_FixPt_AsLong, Host(FM_DataVect_AtAsNumber, &parameters, index));
}

} // namespace corvane
