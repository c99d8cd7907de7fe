#include "tests/support/driver/operation_preparation.h"

#include <map>

namespace kvxtest
{

using TextLines = std::vector<std::string>;

const TextLines& preparationOf(const std::string& operation)
{
    static const std::string kGroup = ":LIST:GROUP:PARA ";
    static const std::string kStep = ":DELAY:GROUP:PARAmeter ";
    static const TextLines kOneGroup = {kGroup + "1,5,1,10"};
    static const TextLines kTwoGroups = {kGroup + "1,5,1,10", kGroup + "2,6,1,10"};
    static const TextLines kThreeGroups = {kGroup + "1,5,1,10", kGroup + "2,6,1,10", kGroup + "3,7,1,10"};
    static const TextLines kOneStep = {kStep + "1,ON,10"};
    static const TextLines kTwoSteps = {kStep + "1,ON,10", kStep + "2,OFF,10"};
    static const TextLines kTemplate = {":LIST:TEMP:OBJ V,1", ":LIST:TEMP:MAXV 20", ":LIST:TEMP:PERI 4"};
    static const std::map<std::string, TextLines> all = {
        {"setVoltageLevelOfTheSeries", {":SOUR:Mode SER"}},
        {"setCurrentProtectionEnabledOff", {":SOUR:Mode PARA"}},
        {"setOvpValue", {":SOUR:Mode PARA"}},
        {"setListEnabled", kOneGroup},
        {"setListEnabledOff", {kGroup + "1,5,1,10", ":LIST:STAT ON"}},
        {"setListGroup", kTwoGroups},
        {"listGroup", kThreeGroups},
        {"insertListGroup", kTwoGroups},
        {"deleteListGroup", kTwoGroups},
        {"clearListGroups", kTwoGroups},
        {"setListTemplateMinimum", kTemplate},
        {"setListTemplateInterval", kTemplate},
        {"setListTemplatePulseWidth", kTemplate},
        {"constructList", kTemplate},
        {"setDelayEnabled", kOneStep},
        {"setDelayEnabledOff", {kStep + "1,ON,10", ":DELAY:STATe ON"}},
        {"setDelayGroup", kOneStep},
        {"delayGroup", kTwoSteps},
        {"delayGroupOff", kOneStep},
        {"insertDelayGroup", kOneStep},
        {"deleteDelayGroup", kOneStep},
        {"clearDelayGroups", kOneStep},
        {"constructDelay", {":DELAY:GENerate:POINTs 4", ":DELAY:GENerate:TIMe:ON 1", ":DELAY:GENerate:TIMe:OFF 1"}},
    };
    static const TextLines kNothing;
    const auto found = all.find(operation);
    return found == all.end() ? kNothing : found->second;
}

} // namespace kvxtest
