#pragma once

#include "io/message_log.h"

#include <string>
#include <vector>

namespace kvxtest
{

/// All records, which are gone then.
inline std::vector<std::string> recordsOf(InstLink::MessageLog& log)
{
    std::vector<std::string> records;
    for (std::string record = log.oldest(); !record.empty(); record = log.oldest()) {
        records.push_back(record);
        log.removeOldest();
    }
    return records;
}

} // namespace kvxtest
