#include "virtual_instrument/scpi/reply.h"

#include "virtual_instrument/scpi/text.h"

namespace kvxvirtual
{

void Reply::addInteger(int value)
{
    addText(std::to_string(value));
}

void Reply::addSetting(double value)
{
    addText(fixedText(value, 6));
}

void Reply::addMeasurement(double value)
{
    addText(fixedText(value, 3));
}

void Reply::addBoolean(bool value)
{
    if (wording_.booleanWords)
        addText(value ? "ON" : "OFF");
    else
        addText(value ? "1" : "0");
}

void Reply::addKeyword(KeywordTable table, int index)
{
    const auto& keyword = table[static_cast<std::size_t>(index)];
    addText(wording_.alternateKeywords && !keyword.alternate.empty() ? keyword.alternate : keyword.usual);
}

void Reply::addText(std::string_view text)
{
    if (!text_.empty())
        text_ += ',';
    text_ += text;
}

} // namespace kvxvirtual
