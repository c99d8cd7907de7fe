#include "runtime/selector.h"

#include "base/ascii.h"
#include "base/failures.h"
#include "instrument/enumerations.h"
#include "runtime/driver_session.h"
#include "runtime/selector_grammar.h"

#include <algorithm>
#include <array>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>

namespace drivekit
{
namespace
{

using Outputs = RepCapBase<OutputChannel>;
using selector::NameRange;

constexpr std::size_t kMaximumLevels = 1;
/// What virtual names may add to a selector. Every output fits many times over.
constexpr std::size_t kLongestAddition = std::size_t{64} << 20U;

/// The names that the items of a selector have taken so far. Names are kept as ranges of numbers, so that an item costs
/// the same however many names it stands for.
class TakenNames
{
public:
    /// What an item shares a name with.
    enum class Overlap
    {
        None,
        WithName,
        WithRange,
    };

    /// Takes the names of an item, unless one of them is taken already.
    Overlap take(const NameRange& names, bool isRange)
    {
        // The ranges taken are disjoint: the last one that begins at or before our end is the only candidate.
        const auto behind = taken_.upper_bound(Key(names.base, names.last));
        if (behind != taken_.begin()) {
            const auto& [key, earlier] = *std::prev(behind);
            if (key.first == names.base && earlier.last >= names.first)
                return isRange || earlier.isRange ? Overlap::WithRange : Overlap::WithName;
        }
        taken_.emplace(Key(names.base, names.first), Extent{names.last, isRange});
        return Overlap::None;
    }

private:
    using Key = std::pair<std::string_view, ViInt32>;

    struct Extent
    {
        ViInt32 last;
        bool isRange;
    };

    std::map<Key, Extent> taken_;
};

/// A name whose number is not spelled as ranges spell theirs stands for itself, under a number that no range has.
NameRange rangeOfName(std::string_view name)
{
    constexpr ViInt32 kNoNumber = -1;
    return selector::asRange(name).value_or(NameRange{name, kNoNumber, kNoNumber});
}

/// Records what is wrong with a selector, in sessions with detailed errors with the item that is at fault.
ViStatus refuse(DriverSession& session, ViStatus code, std::string_view text, std::string_view item)
{
    const std::string_view elaboration = session.settings().detailedErrors ? elaborations::kFaultyItem : "";
    return session.ReportErrorTexts(code, {text, elaboration, ""}, {item});
}

ViStatus refuseForm(DriverSession& session, std::string_view item)
{
    return refuse(session, base::kErrorBadlyFormedSelector, GetErrorMessage(base::kErrorBadlyFormedSelector), item);
}

/// The message has a place for the name in front of that for the selector.
ViStatus refuseLevels(DriverSession& session, std::string_view text)
{
    constexpr ViStatus kCode = base::kErrorInvalidNumberOfLevelsInSelector;
    const std::string_view elaboration = session.settings().detailedErrors ? elaborations::kFaultyItem : "";
    return session.ReportErrorTexts(kCode, {GetErrorMessage(kCode), elaboration, ""}, {Outputs::name(), text});
}

/// Resolves the items of one level, one after the other.
class LevelResolver
{
public:
    LevelResolver(DriverSession& session, OutputSelection& selection) : session_(session), selection_(selection) {}

    ViStatus addItem(std::string_view item) { return selector::isRange(item) ? addRange(item) : addName(item); }

    /// Unknown names are reported only after the last item: a duplicate comes first.
    ViStatus finish()
    {
        if (!unknownName_)
            return VI_SUCCESS;
        return session_.ReportErrorText(base::kErrorUnknownPhysicalIdentifier, selector_texts::kUnknownName,
                                        {*unknownName_, Outputs::name()});
    }

private:
    ViStatus addName(std::string_view name)
    {
        const ViStatus status = take(name, rangeOfName(name), false);
        if (status >= 0)
            select(name);
        return status;
    }

    ViStatus addRange(std::string_view item)
    {
        try {
            return addNames(item);
        } catch (const std::out_of_range&) {
            if (!session_.recordsExceptions())
                throw;
            return session_.ReportError(base::kErrorInvalidRangeInSelector, {item, Outputs::name()});
        }
    }

    ViStatus addNames(std::string_view item)
    {
        const auto range = selector::parseRange(item);
        if (!range)
            return refuse(session_, base::kErrorInvalidRangeInSelector, selector_texts::kBaseNamesDiffer, item);
        if (range->first >= range->last)
            return refuse(session_, base::kErrorInvalidRangeInSelector, selector_texts::kEmptyRange, item);
        const ViStatus status = take(item, *range, true);
        if (status >= 0)
            selectRange(*range);
        return status;
    }

    ViStatus take(std::string_view item, const NameRange& names, bool isRange)
    {
        switch (taken_.take(names, isRange)) {
        case TakenNames::Overlap::WithRange:
            return refuse(session_, base::kErrorInvalidRangeInSelector, selector_texts::kRangesOverlap, item);
        case TakenNames::Overlap::WithName:
            return refuseForm(session_, item);
        case TakenNames::Overlap::None:
            break;
        }
        return VI_SUCCESS;
    }

    /// Ends at the first name that is unknown, after at most as many names as there are channels.
    void selectRange(const NameRange& range)
    {
        for (ViInt32 number = range.first; number <= range.last && !unknownName_; ++number)
            select(std::string(range.base) + std::to_string(number));
    }

    void select(std::string_view name)
    {
        if (const auto position = Outputs::position(name))
            selection_.add(Outputs::physicalName(*position));
        else if (!unknownName_)
            unknownName_ = name;
    }

    DriverSession& session_;
    OutputSelection& selection_;
    TakenNames taken_;
    std::optional<std::string> unknownName_;
};

/// The item of a badly formed selector that is none; the whole selector where all of them are.
std::string_view faultyItem(std::string_view text)
{
    for (std::string_view rest = text; !rest.empty();) {
        const std::string_view piece = rest.substr(0, rest.find_first_of(",:"));
        const std::size_t begin = piece.find_first_not_of("[ ");
        const std::string_view item =
            begin == std::string_view::npos ? piece : piece.substr(begin, piece.find_last_not_of("] ") + 1 - begin);
        if (!selector::isWellFormed(item))
            return item;
        rest.remove_prefix(std::min(rest.size(), piece.size() + 1));
    }
    return text;
}

ViStatus reportNoSelector(DriverSession& session)
{
    return session.ReportErrorText(base::kErrorChannelNameRequired, selector_texts::kNoSelector,
                                   {Outputs::name(), Outputs::name(), DecimalArgument(Outputs::kCount)});
}

/// The selector with its virtual names replaced by what they stand for, once; nothing when it has none.
std::optional<std::string> substituteNames(const DriverSession& session, std::string_view text)
{
    std::string replaced;
    bool isReplaced = false;
    std::string_view rest = text;
    std::string_view copied = text;
    std::string mapped;
    while (!rest.empty() && replaced.size() <= text.size() + kLongestAddition) {
        const std::string_view token = selector::nextToken(rest);
        mapped.clear();
        if (token.empty() || !session.mappedText(token, mapped))
            continue;
        isReplaced = true;
        replaced += copied.substr(0, static_cast<std::size_t>(token.data() - copied.data()));
        replaced += mapped;
        copied = rest;
    }
    if (!isReplaced)
        return std::nullopt;
    return replaced += copied;
}

ViStatus resolveWellFormed(DriverSession& session, std::string_view text, OutputSelection& selection)
{
    if (selector::levelCount(text) > kMaximumLevels)
        return refuseLevels(session, text);
    LevelResolver level(session, selection);
    while (const auto item = selector::nextItem(text)) {
        const ViStatus status = level.addItem(*item);
        if (status < 0)
            return status;
    }
    return level.finish();
}

ViStatus resolveText(DriverSession& session, std::string_view text, OutputSelection& selection)
{
    if (selector::isBlank(text))
        return reportNoSelector(session);
    if (!selector::isWellFormed(text))
        return refuseForm(session, faultyItem(text));
    const auto replaced = substituteNames(session, text);
    if (!replaced)
        return resolveWellFormed(session, text, selection);
    if (replaced->size() > text.size() + kLongestAddition || !selector::isWellFormed(*replaced))
        return refuseForm(session, faultyItem(*replaced));
    return resolveWellFormed(session, *replaced, selection);
}

std::string_view textOf(ViConstString selector)
{
    return selector == nullptr ? "" : selector;
}

/// The position of the output that a selector names as most do: by its physical name alone, where no virtual name can
/// stand for another.
std::optional<std::size_t> namedOutput(const DriverSession& session, std::string_view text)
{
    return session.virtualNames().empty() ? Outputs::position(text) : std::nullopt;
}

/// The channel that the channel table calls "CH" and a digit, for each digit.
constexpr auto kChannelsByNumber = [] {
    std::array<std::optional<ViInt32>, 10> channels;
    for (std::size_t number = 0; number < channels.size(); ++number) {
        const std::array keyword = {'C', 'H', static_cast<char>('0' + number)};
        channels[number] = TSRO::kChannelNames.value({keyword.data(), keyword.size()});
    }
    return channels;
}();

/// -1 without one.
ViInt32 lastDigit(std::string_view text)
{
    const auto digit = std::find_if(text.rbegin(), text.rend(), base::ascii::isDigit);
    return digit == text.rend() ? -1 : *digit - '0';
}

} // namespace

ViStatus resolveSelector(DriverSession& session, ViConstString selector, OutputSelection& selection)
{
    const std::string_view text = textOf(selector);
    const auto position = namedOutput(session, text);
    if (!position) [[unlikely]]
        return resolveText(session, text, selection);
    selection.add(Outputs::physicalName(*position));
    return VI_SUCCESS;
}

ViStatus resolveSingleSelector(DriverSession& session, ViConstString selector, PhysicalName<OutputChannel>& name)
{
    const std::string_view wanted = textOf(selector);
    if (const auto position = namedOutput(session, wanted)) [[likely]] {
        name = Outputs::physicalName(*position);
        return VI_SUCCESS;
    }
    OutputSelection selection;
    const ViStatus status = resolveText(session, wanted, selection);
    if (status < 0)
        return status;
    if (selection.size() != 1)
        return refuse(session, base::kErrorBadlyFormedSelector, selector_texts::kSeveralNames, wanted);
    name = *selection.begin();
    return status;
}

ViInt32 channelNumber(PhysicalName<OutputChannel> name)
{
    return lastDigit(name.text());
}

ViInt32 channelOf(PhysicalName<OutputChannel> name)
{
    const ViInt32 number = lastDigit(name.text());
    const auto channel = number < 0 ? std::nullopt : kChannelsByNumber[static_cast<std::size_t>(number)];
    if (!channel)
        base::throwInvalidKey();
    return *channel;
}

} // namespace drivekit
