#include "virtual_instrument/transport/mdns/service_records.h"

#include <algorithm>
#include <array>
#include <cctype>

namespace kvxvirtual::mdns
{
namespace
{

constexpr std::uint16_t kTypeAddress = 1;
constexpr std::uint16_t kTypePointer = 12;
constexpr std::uint16_t kTypeText = 16;
constexpr std::uint16_t kTypeService = 33;
constexpr std::uint16_t kTypeAny = 255;

constexpr std::uint16_t kClassInternet = 1;
constexpr std::uint16_t kClassAny = 255;
/// In questions: the answer may go to the asker alone. In records: forget others of this name.
constexpr std::uint16_t kClassBit = 0x8000;

constexpr std::uint16_t kFlagsAnswer = 0x8400;
constexpr std::uint16_t kFlagResponse = 0x8000;
constexpr std::size_t kHeaderSize = 12;

constexpr std::uint32_t kSecondsToLive = 120;
/// For programs that keep no eye on changes.
constexpr std::uint32_t kSecondsForPrograms = 10;

constexpr std::size_t kLongestName = 255;

void put16(Bytes& bytes, std::size_t value)
{
    bytes.push_back(static_cast<std::uint8_t>(value >> 8 & 0xFF));
    bytes.push_back(static_cast<std::uint8_t>(value & 0xFF));
}

void put32(Bytes& bytes, std::uint32_t value)
{
    put16(bytes, value >> 16);
    put16(bytes, value & 0xFFFF);
}

void put(Bytes& bytes, std::string_view text)
{
    bytes.insert(bytes.end(), text.begin(), text.end());
}

std::string label(std::string_view text)
{
    constexpr std::size_t kLongestLabel = 63;
    text = text.substr(0, kLongestLabel);
    return static_cast<char>(text.size()) + std::string(text);
}

/// The form that messages have, of dotted text.
std::string encoded(std::string_view dotted)
{
    std::string name;
    while (!dotted.empty()) {
        const auto end = std::min(dotted.find('.'), dotted.size());
        name += label(dotted.substr(0, end));
        dotted.remove_prefix(std::min(end + 1, dotted.size()));
    }
    return name + '\0';
}

bool isSameName(std::string_view a, std::string_view b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](unsigned char x, unsigned char y) { return std::tolower(x) == std::tolower(y); });
}

Bytes bytesOf(std::string_view text)
{
    return {text.begin(), text.end()};
}

/// "key=value" of the identity's fields, by the keys that LXI instruments use.
Bytes textsOf(std::string_view identity)
{
    Bytes texts = bytesOf(label("txtvers=1"));
    for (const std::string_view key : {"Manufacturer", "Model", "SerialNumber", "FirmwareVersion"}) {
        const auto end = std::min(identity.find(','), identity.size());
        put(texts, label(std::string(key) + '=' + std::string(identity.substr(0, end))));
        identity.remove_prefix(std::min(end + 1, identity.size()));
    }
    return texts;
}

struct Question
{
    std::string name;
    std::uint16_t type = 0;
    std::uint16_t classBits = 0;

    bool wants(std::uint16_t recordType) const
    {
        const unsigned wanted = classBits & ~kClassBit & 0xFFFFU;
        return (type == recordType || type == kTypeAny) && (wanted == kClassInternet || wanted == kClassAny);
    }
};

/// Reads questions, each behind the other. Any bytes may come: a name goes on only in front of all that has been read
/// of it, so that it ends.
class QuestionReader
{
public:
    explicit QuestionReader(std::span<const std::uint8_t> message) : message_(message) {}

    std::optional<std::uint16_t> number()
    {
        if (message_.size() - at_ < 2)
            return std::nullopt;
        at_ += 2;
        return static_cast<std::uint16_t>(message_[at_ - 2] << 8 | message_[at_ - 1]);
    }

    std::optional<Question> question()
    {
        auto name = readName();
        const auto type = name ? number() : std::nullopt;
        const auto classBits = type ? number() : std::nullopt;
        if (!classBits)
            return std::nullopt;
        return Question{std::move(*name), *type, *classBits};
    }

private:
    std::optional<std::string> readName()
    {
        std::string name;
        std::size_t place = at_;
        std::size_t front = at_;
        bool hasJumped = false;
        while (place < message_.size()) {
            const std::size_t length = message_[place];
            if (length >= 0xC0) {
                if (place + 1 >= message_.size())
                    return std::nullopt;
                const std::size_t target = (length & 0x3F) << 8 | message_[place + 1];
                if (target >= front)
                    return std::nullopt;
                if (!hasJumped)
                    at_ = place + 2;
                hasJumped = true;
                place = front = target;
                continue;
            }
            if (length > 63 || length >= message_.size() - place || name.size() + length + 2 > kLongestName)
                return std::nullopt;
            name.append(message_.begin() + static_cast<std::ptrdiff_t>(place),
                        message_.begin() + static_cast<std::ptrdiff_t>(place + length + 1));
            place += length + 1;
            if (length == 0) {
                if (!hasJumped)
                    at_ = place;
                return name;
            }
        }
        return std::nullopt;
    }

    std::span<const std::uint8_t> message_;
    std::size_t at_ = 0;
};

/// The questions of a message, those that can be read; none of a message that is no question.
std::vector<Question> questionsOf(std::span<const std::uint8_t> message)
{
    std::vector<Question> questions;
    QuestionReader reader(message);
    if (message.size() < kHeaderSize)
        return questions;
    reader.number();
    const std::size_t flags = *reader.number();
    const std::size_t count = (flags & kFlagResponse) != 0 ? 0 : *reader.number();
    for (int i = 0; i < 3 && count > 0; ++i)
        reader.number();
    for (std::size_t i = 0; i < count; ++i) {
        auto question = reader.question();
        if (!question)
            break;
        questions.push_back(std::move(*question));
    }
    return questions;
}

/// A message up to its records.
Bytes head(std::size_t identifier, std::span<const Question> questions, std::size_t answers, std::size_t additional)
{
    Bytes message;
    for (const std::size_t number :
         {identifier, std::size_t{kFlagsAnswer}, questions.size(), answers, std::size_t{0}, additional})
        put16(message, number);
    for (const Question& question : questions) {
        put(message, question.name);
        put16(message, question.type);
        put16(message, question.classBits);
    }
    return message;
}

} // namespace

ServiceRecords::ServiceRecords(const std::vector<Service>& services, std::string_view identity,
                               std::string_view hostName)
{
    const std::string host = label(hostName) + encoded("local");
    for (const Service& service : services)
        addService(service, host, hostName, textsOf(identity));
    records_.push_back({host, kTypeAddress, {}, false});
}

void ServiceRecords::addService(const Service& service, const std::string& host, std::string_view hostName,
                                const Bytes& texts)
{
    const std::string type = encoded(service.type + ".local");
    const std::string instance = label(hostName) + type;
    const int index = static_cast<int>(records_.size());
    Bytes place;
    put16(place, 0); // priority
    put16(place, 0); // weight
    put16(place, service.port);
    put(place, host);
    records_.push_back({encoded("_services._dns-sd._udp.local"), kTypePointer, bytesOf(type), true, index});
    records_.push_back({type, kTypePointer, bytesOf(instance), true, index});
    records_.push_back({instance, kTypeService, place, false, index});
    records_.push_back({instance, kTypeText, texts, false, index});
}

void ServiceRecords::append(Bytes& message, const Record& record, std::uint32_t address, Asker asker)
{
    Bytes contents = record.contents;
    if (record.type == kTypeAddress)
        put32(contents, address);
    put(message, record.name);
    put16(message, record.type);
    // A program takes the bit for a class that it does not know.
    put16(message, record.isShared || asker == Asker::Program ? kClassInternet : kClassInternet | kClassBit);
    put32(message, asker == Asker::Program ? kSecondsForPrograms : kSecondsToLive);
    put16(message, contents.size());
    message.insert(message.end(), contents.begin(), contents.end());
}

Bytes ServiceRecords::announcement(std::uint32_t address) const
{
    Bytes message = head(0, {}, records_.size(), 0);
    for (const Record& record : records_)
        append(message, record, address, Asker::Responder);
    return message;
}

std::optional<Answer> ServiceRecords::answer(std::span<const std::uint8_t> question, Asker asker,
                                             std::uint32_t address) const
{
    const std::vector<Question> questions = questionsOf(question);
    const auto isWanted = [&questions](const Record& record) {
        return std::any_of(questions.begin(), questions.end(), [&record](const Question& one) {
            return one.wants(record.type) && isSameName(one.name, record.name);
        });
    };
    std::vector<const Record*> wanted;
    for (const Record& record : records_) {
        if (isWanted(record))
            wanted.push_back(&record);
    }
    if (wanted.empty())
        return std::nullopt;
    // Who learns of an instance wants to know where it is: the rest of its records and the host's come along.
    std::vector<const Record*> additional;
    for (const Record& record : records_) {
        const bool isRelated = std::any_of(wanted.begin(), wanted.end(), [&record](const Record* told) {
            return told->service == record.service || record.type == kTypeAddress;
        });
        const bool isTold = std::find(wanted.begin(), wanted.end(), &record) != wanted.end();
        if (isRelated && !isTold && record.type != kTypePointer)
            additional.push_back(&record);
    }
    const bool isProgram = asker == Asker::Program;
    const std::size_t identifier = isProgram ? std::size_t{question[0]} << 8 | question[1] : 0;
    Answer answer;
    answer.message = head(identifier, isProgram ? std::span(questions) : std::span<const Question>(), wanted.size(),
                          additional.size());
    for (const auto* const records : {&wanted, &additional}) {
        for (const Record* const record : *records)
            append(answer.message, *record, address, asker);
    }
    answer.toAskerAlone = isProgram || std::all_of(questions.begin(), questions.end(), [](const Question& one) {
                              return (one.classBits & kClassBit) != 0;
                          });
    return answer;
}

} // namespace kvxvirtual::mdns
