#include "tools/kvx2800t/panel/messages.h"

#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <variant>

using namespace panel;

namespace
{

PageRequest requestIn(const std::string& text)
{
    auto message = readRequest(text);
    if (const auto* refusal = std::get_if<Refusal>(&message))
        throw std::runtime_error("refused: " + refusal->text);
    return std::get<PageRequest>(message);
}

/// Why a message is refused, which has to have been an object.
std::string refusalOf(const std::string& text)
{
    const auto message = readRequest(text);
    const auto* refusal = std::get_if<Refusal>(&message);
    return refusal == nullptr ? "taken" : refusal->isObject ? refusal->text : "no object";
}

/// All members that any action has; each row of the table takes its own.
std::string memberText(Member member)
{
    switch (member) {
    case Member::Channel:
        return R"("channel":"CH3")";
    case Member::Value:
        return R"("value":1.5)";
    case Member::On:
        return R"("on":true)";
    case Member::Enabled:
        return R"("enabled":true)";
    case Member::Mode:
        return R"("mode":"parallel")";
    case Member::Groups:
        return R"("groups":[{"voltage":1,"current":0.5,"duration":0.25}])";
    case Member::Cycles:
        return R"("cycles":3)";
    case Member::End:
        return R"("end":"last")";
    }
    return "";
}

/// A message of an action, without the member at `left` of its row.
std::string messageOf(const ActionRow& row, std::size_t left, const std::string& more = "")
{
    std::string text = R"({"id":7,"do":")" + std::string(row.name) + '"';
    for (std::size_t i = 0; i < row.members.size(); ++i)
        if (i != left)
            text += ',' + memberText(row.members[i]);
    return text + more + '}';
}

constexpr std::size_t kNone = 99;

} // namespace

TEST(PanelMessages, EachActionIsReadWithItsMembers)
{
    for (const ActionRow& row : actionTable()) {
        const PageRequest request = requestIn(messageOf(row, kNone));
        EXPECT_EQ(request.id, 7);
        EXPECT_EQ(request.action.kind, row.kind) << row.name;
    }
    const Action list = requestIn(messageOf(rowOf(ActionKind::LoadList), kNone)).action;
    EXPECT_EQ(list.channel, 3);
    ASSERT_EQ(list.groups.size(), 1U);
    EXPECT_EQ(list.groups[0].volts, 1.0);
    EXPECT_EQ(list.groups[0].amperes, 0.5);
    EXPECT_EQ(list.groups[0].seconds, 0.25);
    EXPECT_EQ(list.cycles, 3);
    EXPECT_EQ(list.end, kvx2800t::ListEnd::last);
    const Action ovp = requestIn(messageOf(rowOf(ActionKind::SetOvp), kNone)).action;
    EXPECT_EQ(ovp.value, 1.5);
    EXPECT_TRUE(ovp.on);
    EXPECT_EQ(requestIn(messageOf(rowOf(ActionKind::SetSourceMode), kNone)).action.mode,
              kvx2800t::SourceMode::parallel);
}

TEST(PanelMessages, TheTableIsInTheOrderOfTheKinds)
{
    for (std::size_t i = 0; i < actionTable().size(); ++i) {
        EXPECT_EQ(static_cast<std::size_t>(actionTable()[i].kind), i);
        EXPECT_EQ(findAction(actionTable()[i].name), &actionTable()[i]);
    }
    EXPECT_EQ(actionTable().back().kind, ActionKind::Reset);
}

TEST(PanelMessages, AMemberThatIsMissingOrTooMuchIsRefused)
{
    for (const ActionRow& row : actionTable()) {
        for (std::size_t left = 0; left < row.members.size(); ++left)
            EXPECT_NE(refusalOf(messageOf(row, left)).find("is missing"), std::string::npos) << row.name << left;
        EXPECT_EQ(refusalOf(messageOf(row, kNone, R"(,"more":1)")), R"(there is no "more" in it)") << row.name;
    }
}

TEST(PanelMessages, AMemberOfAnotherTypeIsRefused)
{
    EXPECT_EQ(refusalOf(R"({"id":1,"do":"setVoltage","channel":"CH1","value":"5"})"), R"("value" is no finite number)");
    EXPECT_EQ(refusalOf(R"({"id":1,"do":"setVoltage","channel":"CH1","value":null})"),
              R"("value" is no finite number)");
    EXPECT_EQ(refusalOf(R"({"id":1,"do":"setVoltage","channel":1,"value":5})"), R"("channel" is no text)");
    EXPECT_EQ(refusalOf(R"({"id":1,"do":"setVoltage","channel":"CH7","value":5})"),
              R"("channel" is none of its words)");
    EXPECT_EQ(refusalOf(R"({"id":1,"do":"setVoltage","channel":"CH0","value":5})"),
              R"("channel" is none of its words)");
    EXPECT_EQ(refusalOf(R"({"id":1,"do":"setOutput","channel":"CH1","on":1})"), R"("on" is neither true nor false)");
    EXPECT_EQ(refusalOf(R"({"id":1,"do":"setSourceMode","mode":"Series"})"), R"("mode" is none of its words)");
    EXPECT_EQ(refusalOf(R"({"id":1,"do":"fly"})"), R"(there is no action "fly")");
    EXPECT_EQ(refusalOf(R"({"id":1,"do":["allOff"]})"), R"("do" is no text)");
    EXPECT_EQ(refusalOf(R"({"id":1})"), R"("do" is missing)");
}

TEST(PanelMessages, NumbersBeyondThoseOfADoubleAreNoJson)
{
    EXPECT_EQ(refusalOf(R"({"id":1,"do":"setVoltage","channel":"CH1","value":1e999})"), "no object");
    EXPECT_EQ(refusalOf(R"({"id":1,"do":"setVoltage","channel":"CH1","value":NaN})"), "no object");
    EXPECT_EQ(requestIn(R"({"id":1,"do":"setVoltage","channel":"CH1","value":-1e308})").action.value, -1e308);
}

TEST(PanelMessages, AnIdIsAnIntegerThatJavaScriptCanCount)
{
    const auto withId = [](const std::string& id) { return R"({"id":)" + id + R"(,"do":"allOff"})"; };
    EXPECT_EQ(requestIn(withId("1")).id, 1);
    EXPECT_EQ(requestIn(withId("9007199254740991")).id, 9007199254740991);
    const std::string text = R"("id" is no integer from 1 to 9007199254740991)";
    for (const char* id : {"0", "-1", "1.5", "9007199254740992", "18446744073709551615", "\"1\"", "true"})
        EXPECT_EQ(refusalOf(withId(id)), text) << id;
    EXPECT_EQ(refusalOf(R"({"do":"allOff"})"), R"("id" is missing)");
}

TEST(PanelMessages, ListsHaveGroupsOfNumbersAndCyclesOf31Bits)
{
    const auto with = [](const std::string& groups, const std::string& cycles) {
        return R"({"id":1,"do":"loadList","channel":"CH1","groups":)" + groups + R"(,"cycles":)" + cycles +
               R"(,"end":"off"})";
    };
    const std::string group = R"({"voltage":1,"current":2,"duration":3})";
    EXPECT_EQ(requestIn(with('[' + group + ',' + group + ']', "2147483647")).action.groups.size(), 2U);
    EXPECT_EQ(refusalOf(with('[' + group + ']', "2147483648")), R"("cycles" is no integer from 0 to 2147483647)");
    EXPECT_EQ(refusalOf(with('[' + group + ']', "-1")), R"("cycles" is no integer from 0 to 2147483647)");
    EXPECT_EQ(refusalOf(with("[]", "1")), R"("groups" is no array of groups)");
    EXPECT_EQ(refusalOf(with(group, "1")), R"("groups" is no array of groups)");
    EXPECT_EQ(refusalOf(with("[5]", "1")), "a group is no object");
    EXPECT_EQ(refusalOf(with(R"([{"voltage":1,"current":2}])", "1")), R"("duration" is missing)");
    EXPECT_EQ(refusalOf(with(R"([{"voltage":1,"current":2,"duration":3,"x":4}])", "1")), R"(there is no "x" in it)");
}

TEST(PanelMessages, WhatIsNoObjectComesFromNoPageOfOurs)
{
    for (const char* text : {"", "hello", "[1]", "7", "null", R"("do")", R"({"id":1)", R"({"id":1}x)"})
        EXPECT_EQ(refusalOf(text), "no object") << text;
    EXPECT_EQ(refusalOf(std::string(60000, '[')), "no object");
    EXPECT_EQ(refusalOf(std::string(30000, '[') + std::string(30000, ']')), "no object");
}

TEST(PanelMessages, ARefusalTellsTheIdWhereItCouldBeRead)
{
    EXPECT_EQ(refusalMessage(std::get<Refusal>(readRequest(R"({"id":5,"do":"fly"})"))),
              R"({"id":5,"name":"INVALID_MESSAGE","ok":false,"text":"there is no action \"fly\"","type":"result"})");
    EXPECT_EQ(refusalMessage(std::get<Refusal>(readRequest(R"({"do":"allOff"})"))),
              R"({"id":null,"name":"INVALID_MESSAGE","ok":false,"text":"\"id\" is missing","type":"result"})");
}

TEST(PanelMessages, ResultsTellHowAnActionHasEnded)
{
    Result result;
    result.id = 4;
    EXPECT_EQ(resultMessage(result), R"({"id":4,"ok":true,"type":"result"})");
    result.code = KVX2800T_WARN_ARRAY_TRUNCATED;
    result.text = "KVX2800T_WARN_ARRAY_TRUNCATED";
    EXPECT_EQ(resultMessage(result),
              R"({"code":"0x3FFA4001","id":4,"ok":true,"type":"result","warning":"KVX2800T_WARN_ARRAY_TRUNCATED"})");
    result = {5, false, KVX2800T_ERROR_IO, "KVX2800T_ERROR_IO", "gone"};
    EXPECT_EQ(resultMessage(result),
              R"({"code":"0xBFFA4214","id":5,"name":"KVX2800T_ERROR_IO","ok":false,"text":"gone","type":"result"})");
    result = {6, false, std::nullopt, "BUSY", "later"};
    EXPECT_EQ(resultMessage(result), R"({"id":6,"name":"BUSY","ok":false,"text":"later","type":"result"})");
}

TEST(PanelMessages, AStateWithoutAConnectionHasNoValues)
{
    Snapshot snapshot;
    snapshot.sequence = 3;
    snapshot.seconds = 1.5;
    snapshot.link = {LinkState::Lost, "gone"};
    EXPECT_EQ(stateMessage(snapshot),
              R"({"channels":null,"identity":null,"link":{"state":"lost","text":"gone"},"lists":null,"sequence":3,)"
              R"("sourceMode":null,"time":1.5,"type":"state"})");
}

TEST(PanelMessages, AStateHasChannelsAndLists)
{
    Snapshot snapshot;
    snapshot.link.state = LinkState::Connected;
    InstrumentState& instrument = snapshot.instrument.emplace();
    instrument.identity = {"Tessaro", "KVX2833T", "S1", "1.0"};
    instrument.sourceMode = kvx2800t::SourceMode::series;
    ChannelState& channel = instrument.channels[0];
    channel.settings = {5.0, 1.0, 33.0, 3.2, true, 6.0, true, 2.0};
    channel.outputEnabled = true;
    channel.reading = {4.5, 0.5, 2.25};
    channel.condition.bits = 1 + 8;
    instrument.lists.push_back({2, 3, 5, {kvx2800t::ListState::running, 0.5, 2, 4}});
    instrument.lists.push_back({4, 1, 0, {kvx2800t::ListState::stopped, 0.0, 0, 0}});
    const std::string text = stateMessage(snapshot);
    EXPECT_NE(text.find(R"({"current":0.5,"currentLimit":1.0,"maxCurrent":3.2,"maxVoltage":33.0,"name":"CH1",)"
                        R"("ocpEnabled":true,"ocpLevel":2.0,"outputEnabled":true,"ovpEnabled":true,"ovpLimit":6.0,)"
                        R"("power":2.25,"regulation":"CC","tripped":["OCP"],"voltage":4.5,"voltageLevel":5.0})"),
              std::string::npos)
        << text;
    EXPECT_NE(text.find(R"("lists":[{"channel":"CH2","cycle":2,"cycles":5,"group":2,"groups":3,"remaining":0.5,)"
                        R"("state":"running"},{"channel":"CH4","cycle":0,"cycles":0,"group":0,"groups":1,)"
                        R"("remaining":0.0,"state":"stopped"}])"),
              std::string::npos)
        << text;
    EXPECT_NE(text.find(R"("identity":{"firmware":"1.0","manufacturer":"Tessaro","model":"KVX2833T","serial":"S1"})"),
              std::string::npos);
    EXPECT_NE(text.find(R"("sourceMode":"series")"), std::string::npos);
    EXPECT_NE(text.find(R"("name":"CH6")"), std::string::npos);
}

TEST(PanelMessages, TheRegulationIsThatOfAnOutputThatIsOn)
{
    Snapshot snapshot;
    ChannelState& channel = snapshot.instrument.emplace().channels[0];
    const auto regulation = [&snapshot, &channel](bool on, ViInt32 bits) {
        channel.outputEnabled = on;
        channel.condition.bits = bits;
        const std::string text = stateMessage(snapshot);
        const std::string name = R"("regulation":")";
        const std::size_t begin = text.find(name) + name.size();
        return text.substr(begin, text.find('"', begin) - begin);
    };
    EXPECT_EQ(regulation(false, 2), "off");
    EXPECT_EQ(regulation(true, 2), "CV");
    EXPECT_EQ(regulation(true, 1), "CC");
    EXPECT_EQ(regulation(true, 0), "unregulated");
}

TEST(PanelMessages, WhatIsNoNumberOrNoUtf8IsSentAsJsonAllTheSame)
{
    Snapshot snapshot;
    snapshot.instrument.emplace().channels[0].reading.volts = std::numeric_limits<double>::quiet_NaN();
    EXPECT_NE(stateMessage(snapshot).find(R"("voltage":null)"), std::string::npos);
    EXPECT_EQ(errorsMessage({false, {{-222, "bad \xFF"}}}),
              "{\"entries\":[{\"code\":-222,\"text\":\"bad \xEF\xBF\xBD\"}],\"type\":\"errors\"}");
    EXPECT_EQ(errorsMessage({true, {}}), R"({"cleared":true,"entries":[],"type":"errors"})");
}

TEST(PanelMessages, OtherMessagesToPages)
{
    EXPECT_NE(helloMessage("1.0.0", "COM", false).find(R"("channels":[{"name":"CH1","physical":"OutputChannel1"})"),
              std::string::npos);
    EXPECT_EQ(linesMessage({3, {"> a", "< b"}, {"c;"}, {"p"}}, true),
              R"({"c":["c;"],"id":3,"page":true,"python":["p"],"scpi":["> a","< b"],"type":"lines"})");
    EXPECT_EQ(listMessage({2, {{1.0, 0.5, 0.1}}, 3, kvx2800t::ListEnd::last}),
              R"({"channel":"CH2","cycles":3,"end":"last","groups":[{"current":0.5,"duration":0.1,"voltage":1.0}],)"
              R"("type":"list"})");
}
