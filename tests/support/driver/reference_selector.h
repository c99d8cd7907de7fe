#pragma once

#include "tests/support/driver/selector_result.h"

#include <string>
#include <vector>

/// What selectors stand for, worked out step by step with regular expressions and with every range written out, without
/// regard to time: what the driver is compared with. Its texts are short and its ranges small.
namespace kvxtest
{

/// Whether `text` is a selector as a whole.
bool fitsSelectorGrammar(const std::string& text);

SelectorResult referenceResolve(const std::string& selector, const std::vector<StoredVirtualName>& virtualNames = {});

} // namespace kvxtest
