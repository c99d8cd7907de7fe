#include "tools/store/element_writer.h"

#include "tools/store/plain_text.h"

namespace store_tool
{

void ElementWriter::beginLine()
{
    if (text_.empty())
        return;
    text_ += layout_.lineBreak;
    for (std::size_t level = 0; level < open_.size(); ++level)
        text_ += layout_.step;
}

ElementWriter& ElementWriter::open(std::string_view name)
{
    beginLine();
    text_.append("<").append(name).append(">");
    open_.emplace_back(name);
    return *this;
}

ElementWriter& ElementWriter::open(std::string_view name, std::string_view id)
{
    beginLine();
    text_.append("<").append(name).append(" id=\"").append(id).append("\">");
    open_.emplace_back(name);
    return *this;
}

ElementWriter& ElementWriter::close()
{
    const std::string name = std::move(open_.back());
    open_.pop_back();
    beginLine();
    text_.append("</").append(name).append(">");
    return *this;
}

ElementWriter& ElementWriter::leaf(std::string_view name, std::string_view text)
{
    beginLine();
    text_.append("<").append(name).append(">").append(xmlEscaped(text)).append("</").append(name).append(">");
    return *this;
}

ElementWriter& ElementWriter::empty(std::string_view name)
{
    beginLine();
    text_.append("<").append(name).append("/>");
    return *this;
}

ElementWriter& ElementWriter::reference(std::string_view name, std::string_view idref)
{
    beginLine();
    text_.append("<").append(name).append(" idref=\"").append(xmlEscaped(idref)).append("\"/>");
    return *this;
}

} // namespace store_tool
