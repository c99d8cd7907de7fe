#pragma once

#include "virtual_instrument/scpi/keywords.h"

#include <string>
#include <string_view>

namespace kvxvirtual
{

/// How the instrument words its replies; clients must understand all of it.
struct Wording
{
    /// "ON" and "OFF" instead of "1" and "0".
    bool booleanWords = false;
    /// A keyword's other spelling where it has one: CH5, CH6, 4K, 8K.
    bool alternateKeywords = false;
};

/// Collects the fields of one query's reply, joined by "," without blanks.
class Reply
{
public:
    explicit Reply(const Wording& wording) : wording_(wording) {}

    void addInteger(int value);
    /// A setting: six decimals.
    void addSetting(double value);
    /// A measured value: three decimals.
    void addMeasurement(double value);
    void addBoolean(bool value);
    void addKeyword(KeywordTable table, int index);
    /// The text as it is.
    void addText(std::string_view text);

    const std::string& text() const { return text_; }

private:
    const Wording& wording_;
    std::string text_;
};

} // namespace kvxvirtual
