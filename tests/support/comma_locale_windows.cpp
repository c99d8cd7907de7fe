#include "tests/support/comma_locale.h"

#include <clocale>

namespace kvxtest
{

CommaLocale::CommaLocale()
{
    // The name that every C library of Windows takes; "de-DE" is too new for the oldest.
    if (std::setlocale(LC_ALL, "German_Germany.1252") == nullptr)
        problem_ = "the C library has no German locale";
}

CommaLocale::~CommaLocale()
{
    std::setlocale(LC_ALL, "C");
}

} // namespace kvxtest
