#include "tools/store/store_check.h"

#include "tools/store/element_rules.h"
#include "tools/store/plain_text.h"
#include "tools/store/selector_names.h"
#include "tools/store/use_rules.h"
#include "tools/store/value_rules.h"
#include "tools/store/values.h"

#include <algorithm>
#include <limits>
#include <map>
#include <unordered_map>
#include <unordered_set>

namespace store_tool
{
namespace
{

/// Published APIs share names, since each type and version is one of its own.
constexpr std::string_view kWithoutUniqueNames = "PublishedAPIs";

std::string tag(std::string_view element)
{
    return "<" + abridged(element) + ">";
}

bool isSession(const XmlElement& element)
{
    return element.name == "IviDriverSession" || element.name == "IviSession";
}

bool isRange(const XmlElement& element)
{
    return element.name == "IviVirtualRange" || element.name == "IviPhysicalRange";
}

template <class Rule>
const Rule* findRule(std::span<const Rule> rules, std::string_view element)
{
    const auto rule =
        std::find_if(rules.begin(), rules.end(), [element](const Rule& row) { return row.element == element; });
    return rule == rules.end() ? nullptr : &*rule;
}

/// The lines of a text by the places where they begin.
class Lines
{
public:
    explicit Lines(std::string_view text)
    {
        for (std::size_t end = text.find('\n'); end != std::string_view::npos; end = text.find('\n', end + 1))
            ends_.push_back(end);
    }

    std::size_t numberAt(std::size_t place) const
    {
        const auto next = std::lower_bound(ends_.begin(), ends_.end(), place);
        return static_cast<std::size_t>(next - ends_.begin()) + 1;
    }

private:
    std::vector<std::size_t> ends_;
};

class Checker
{
public:
    explicit Checker(const StoreText& store) : store_(store), root_(store.root()) {}

    std::vector<Finding> run()
    {
        collectIds(root_);
        checkTargets(root_);
        checkContent(root_);
        checkSessionsAreListed();
        return inOrder();
    }

private:
    struct Located
    {
        const XmlElement* element;
        Finding finding;
    };

    /// An element on the way to the one that is looked at. Its text is made once, for the first finding below it.
    struct Step
    {
        const XmlElement* element;
        std::string text;
    };

    /// Counts an element into the place that findings tell, for as long as it is looked at.
    class Inside
    {
    public:
        Inside(Checker& checker, const XmlElement& element) : path_(checker.path_) { path_.push_back({&element, {}}); }
        ~Inside() { path_.pop_back(); }
        Inside(const Inside&) = delete;
        Inside& operator=(const Inside&) = delete;

    private:
        std::vector<Step>& path_;
    };

    void collectIds(const XmlElement& element);
    void checkTargets(const XmlElement& element);
    void checkSessionsAreListed();
    std::vector<Finding> inOrder();

    void checkContent(const XmlElement& element);
    void checkChildren(const XmlElement& element, std::span<const ChildRule> rules);
    void checkChild(const XmlElement& owner, const XmlElement& child, const ChildRule& rule);
    void checkValue(const XmlElement& owner, const XmlElement& child, Content content);
    void checkCollection(const XmlElement& collection, std::span<const ItemRule> rules);
    void checkItem(const XmlElement& item, const ItemRule& rule);
    void checkUniqueNames(const XmlElement& collection);
    void checkDefinition(const XmlElement& element);
    void checkReference(const XmlElement& reference);
    void checkLogicalName(const XmlElement& logicalName);
    void checkRange(const XmlElement& range);
    void checkOverlaps(const XmlElement& virtualName);
    void checkVirtualNames(const XmlElement& session);
    void checkUse(const XmlElement& element);

    const XmlElement* softwareModuleOf(const XmlElement& session) const;
    const XmlElement* targetOf(const XmlElement& reference) const;
    std::string_view nameOf(const XmlElement& item) const;
    const PhysicalNames& physicalNamesOf(const XmlElement& softwareModule);

    /// A finding about the element that is looked at.
    void add(std::string text, FindingKind kind = FindingKind::Format);
    void addBelow(const XmlElement& child, std::string text);
    std::string stepText(const XmlElement& element) const;
    std::string place();

    const StoreText& store_;
    const XmlElement& root_;
    std::vector<Step> path_;
    std::unordered_map<std::string_view, const XmlElement*> byId_;
    std::unordered_map<const XmlElement*, PhysicalNames> physicalNames_;
    std::vector<Located> findings_;
};

void Checker::collectIds(const XmlElement& element)
{
    const Inside inside(*this, element);
    if (element.id && element.id->empty())
        add("has an empty id");
    else if (element.id && !byId_.emplace(*element.id, &element).second)
        add("has the id " + inQuotes(*element.id) + " of another element");
    for (const XmlElement& child : element.children)
        collectIds(child);
}

/// Also of elements that are not known.
void Checker::checkTargets(const XmlElement& element)
{
    const Inside inside(*this, element);
    if (element.idref && !byId_.contains(*element.idref))
        add("refers to " + inQuotes(*element.idref) + ", which is nowhere");
    for (const XmlElement& child : element.children)
        checkTargets(child);
}

void Checker::checkContent(const XmlElement& element)
{
    const Inside inside(*this, element);
    const auto rules = rulesFor(element.name);
    if (!trimmed(element.text).empty())
        add("has text between its elements");
    for (const ChildRule& rule : rules) {
        const bool isMissed = rule.isObligatory || isNeeded(element, rule.content);
        if (isMissed && element.child(rule.element) == nullptr)
            add("has no " + tag(rule.element));
    }
    checkChildren(element, rules);
}

void Checker::checkChildren(const XmlElement& element, std::span<const ChildRule> rules)
{
    const ChildRule* furthest = nullptr;
    std::unordered_set<const ChildRule*> seen;
    for (const XmlElement& child : element.children) {
        const ChildRule* const rule = findRule(rules, child.name);
        if (rule == nullptr)
            addBelow(child, "is not known here");
        else if (!seen.insert(rule).second)
            addBelow(child, "is there twice");
        else
            checkChild(element, child, *rule);
        if (rule != nullptr && furthest != nullptr && rule < furthest)
            addBelow(child, "stands behind " + tag(furthest->element));
        furthest = rule == nullptr ? furthest : std::max(furthest, rule);
    }
}

void Checker::checkChild(const XmlElement& owner, const XmlElement& child, const ChildRule& rule)
{
    const Inside inside(*this, child);
    if (rule.content == Content::Collection)
        checkCollection(child, rule.items);
    else if (rule.content == Content::Reference)
        checkReference(child);
    else
        checkValue(owner, child, rule.content);
}

void Checker::checkValue(const XmlElement& owner, const XmlElement& child, Content content)
{
    const std::string problem = problemOf(owner, child, content);
    if (!problem.empty())
        add(problem);
    for (const XmlElement& unknown : child.children)
        addBelow(unknown, "is not known here");
}

void Checker::checkCollection(const XmlElement& collection, std::span<const ItemRule> rules)
{
    if (!trimmed(collection.text).empty())
        add("has text between its elements");
    for (const XmlElement& item : collection.children) {
        if (const ItemRule* const rule = findRule(rules, item.name))
            checkItem(item, *rule);
        else
            addBelow(item, "is not known here");
    }
    if (collection.name != kWithoutUniqueNames)
        checkUniqueNames(collection);
}

void Checker::checkItem(const XmlElement& item, const ItemRule& rule)
{
    if (!rule.isReference) {
        checkDefinition(item);
        return;
    }
    const Inside inside(*this, item);
    checkReference(item);
}

void Checker::checkUniqueNames(const XmlElement& collection)
{
    std::unordered_set<std::string_view> names;
    for (const XmlElement& item : collection.children) {
        const std::string_view name = nameOf(item);
        const Inside inside(*this, item);
        if (!name.empty() && !names.insert(name).second)
            add("has the name " + inQuotes(name) + " of another one");
    }
}

void Checker::checkDefinition(const XmlElement& element)
{
    {
        const Inside inside(*this, element);
        if (!element.id)
            add("has no id");
        if (element.idref)
            add("has an idref, but is no reference");
        if (isRange(element))
            checkRange(element);
        if (element.name == "IviVirtualName")
            checkOverlaps(element);
        if (element.name == "IviLogicalName")
            checkLogicalName(element);
        if (isSession(element))
            checkVirtualNames(element);
        checkUse(element);
    }
    checkContent(element);
}

void Checker::checkReference(const XmlElement& reference)
{
    const XmlElement* const target = targetOf(reference);
    if (!reference.idref)
        add("has no idref");
    else if (target != nullptr && target->name != referredElement(reference.name))
        add("refers to " + inQuotes(*reference.idref) + ", which is " + tag(target->name));
    if (reference.id || !reference.children.empty() || !trimmed(reference.text).empty())
        add("is a reference, but has more than an idref");
}

void Checker::checkLogicalName(const XmlElement& logicalName)
{
    if (logicalName.child("IviDriverSession") == nullptr && logicalName.child("IviSession") == nullptr)
        add("refers to no session");
}

void Checker::checkRange(const XmlElement& range)
{
    const auto min = parseInteger(range.textOf("Min"));
    const auto max = parseInteger(range.textOf("Max"));
    const auto start = parseInteger(range.textOf("StartingPhysicalIndex"));
    if (min && max && *min > *max)
        add("has a Min " + std::to_string(*min) + " above its Max " + std::to_string(*max));
    else if (min && max && start && std::int64_t{*start} + *max - *min > std::numeric_limits<std::int32_t>::max())
        add("ends behind the largest index");
}

void Checker::checkOverlaps(const XmlElement& virtualName)
{
    std::map<std::int32_t, const XmlElement*> byMax; // of ranges that do not overlap
    for (const XmlElement& item : virtualName.itemsOf("VirtualRanges")) {
        const auto range = rangeOf(item);
        if (!range)
            continue;
        const auto next = byMax.lower_bound(range->min);
        const bool overlaps = next != byMax.end() && rangeOf(*next->second)->min <= range->max;
        if (overlaps)
            add("has ranges that overlap: " + inQuotes(next->second->textOf("Name")) + " and " +
                inQuotes(item.textOf("Name")));
        else
            byMax.emplace(range->max, &item);
    }
}

void Checker::checkVirtualNames(const XmlElement& session)
{
    const XmlElement* const softwareModule = softwareModuleOf(session);
    if (softwareModule == nullptr || session.itemsOf("VirtualNames").empty())
        return;
    const PhysicalNames& physical = physicalNamesOf(*softwareModule);
    const Inside insideCollection(*this, *session.child("VirtualNames"));
    for (const XmlElement& item : session.itemsOf("VirtualNames")) {
        const Inside inside(*this, item);
        const std::string shared = physical.sharedWith(item);
        if (!shared.empty())
            add("stands for " + inQuotes(shared) + ", which is a physical name");
    }
}

void Checker::checkUse(const XmlElement& element)
{
    const std::size_t depth = path_.size();
    for (UseProblem& problem : useProblemsOf(element, softwareModuleOf(element))) {
        for (const XmlElement* const step : problem.path)
            path_.push_back({step, {}});
        add(std::move(problem.text), FindingKind::Use);
        path_.resize(depth);
    }
}

void Checker::checkSessionsAreListed()
{
    const XmlElement* const sessions = root_.child("DriverSessions");
    if (sessions == nullptr)
        return;
    std::unordered_set<std::string_view> listed;
    for (const XmlElement& item : root_.itemsOf("Sessions")) {
        if (item.idref)
            listed.insert(*item.idref);
    }
    const Inside insideRoot(*this, root_);
    const Inside insideCollection(*this, *sessions);
    for (const XmlElement& session : sessions->children) {
        const Inside inside(*this, session);
        if (session.id && !listed.contains(*session.id))
            add("is not listed in <Sessions>");
    }
}

const XmlElement* Checker::softwareModuleOf(const XmlElement& session) const
{
    const XmlElement* const reference = session.child("IviSoftwareModuleRef");
    return reference == nullptr ? nullptr : targetOf(*reference);
}

const XmlElement* Checker::targetOf(const XmlElement& reference) const
{
    const auto target = reference.idref ? byId_.find(*reference.idref) : byId_.end();
    return target == byId_.end() ? nullptr : target->second;
}

/// The name of an item or, of a reference, of what it refers to.
std::string_view Checker::nameOf(const XmlElement& item) const
{
    const XmlElement* const target = targetOf(item);
    return target == nullptr ? item.textOf("Name") : target->textOf("Name");
}

const PhysicalNames& Checker::physicalNamesOf(const XmlElement& softwareModule)
{
    const auto known = physicalNames_.find(&softwareModule);
    return known != physicalNames_.end()
               ? known->second
               : physicalNames_.emplace(&softwareModule, PhysicalNames(softwareModule)).first->second;
}

std::string Checker::stepText(const XmlElement& element) const
{
    const bool isNamed = &element != &root_ && element.child("Name") != nullptr;
    return abridged(element.name) + (isNamed ? " " + inQuotes(element.textOf("Name")) : "");
}

std::string Checker::place()
{
    std::string text;
    for (Step& step : path_) {
        if (step.element == &root_ && path_.size() > 1)
            continue;
        if (step.text.empty())
            step.text = stepText(*step.element);
        text += (text.empty() ? "" : "/") + step.text;
    }
    return text;
}

void Checker::add(std::string text, FindingKind kind)
{
    findings_.push_back({path_.back().element, {kind, 0, place(), std::move(text)}});
}

void Checker::addBelow(const XmlElement& child, std::string text)
{
    const Inside inside(*this, child);
    add(std::move(text));
}

std::vector<Finding> Checker::inOrder()
{
    std::stable_sort(findings_.begin(), findings_.end(), [](const Located& one, const Located& other) {
        return one.element->begin < other.element->begin;
    });
    const Lines lines(store_.text());
    std::vector<Finding> findings;
    for (Located& located : findings_) {
        located.finding.line = lines.numberAt(located.element->begin);
        findings.push_back(std::move(located.finding));
    }
    return findings;
}

} // namespace

std::vector<Finding> check(const StoreText& store)
{
    return Checker(store).run();
}

std::vector<Finding> newFindings(const std::vector<Finding>& before, const std::vector<Finding>& after)
{
    std::map<std::pair<std::string_view, std::string_view>, int> known;
    for (const Finding& finding : before)
        ++known[{finding.place, finding.text}];
    std::vector<Finding> fresh;
    std::copy_if(after.begin(), after.end(), std::back_inserter(fresh), [&known](const Finding& finding) {
        return known[{finding.place, finding.text}]-- <= 0;
    });
    return fresh;
}

} // namespace store_tool
