#pragma once

#include "fuzz/input.h"
#include "visa/transport/transport.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace kvxfuzz
{

/// Reads, into a buffer of exactly that size, so that a sanitizer sees what goes beyond; what holds of every read has
/// to hold.
inline void readChecked(visa::Transport& transport, const visa::Terms& terms, std::size_t size)
{
    std::vector<ViByte> buffer(size);
    std::size_t count = 0;
    const ViStatus status = transport.read(buffer, terms, count);
    require(count <= size);
    require(status != VI_SUCCESS_MAX_CNT || count == size);
    require(status != VI_SUCCESS || terms.attributes.get(VI_ATTR_SUPPRESS_END_EN) == VI_FALSE);
    if (status == VI_SUCCESS_TERM_CHAR)
        require(count > 0 && buffer[count - 1] == terms.attributes.get(VI_ATTR_TERMCHAR));
}

inline void writeChecked(visa::Transport& transport, const visa::Terms& terms, std::size_t size)
{
    const std::vector<ViByte> bytes(size, 'x');
    std::size_t count = 0;
    const ViStatus status = transport.write(bytes, terms, count);
    require(count <= size && (status < 0 || count == size));
}

/// Sets what ends a read.
inline void setEnds(visa::AttributeValues& attributes, Input& input)
{
    attributes.set(VI_ATTR_TERMCHAR_EN, input.number() % 2);
    attributes.set(VI_ATTR_SUPPRESS_END_EN, input.number() % 2);
    attributes.set(VI_ATTR_TERMCHAR, input.number());
}

/// Leads a session, which an input opens, as far as the input goes.
template <class Session>
void runSession(std::span<const std::uint8_t> bytes)
{
    Input input(bytes);
    Session session(input);
    while (session.isOpen() && !input.isOver())
        session.step(input);
}

} // namespace kvxfuzz
