#pragma once

namespace store_tool
{

/// What can be done about a store that cannot be read.
namespace remedies
{
inline constexpr auto kForbidden = "ask its owner for the right to read it, or name another file with --store";
inline constexpr auto kNoFile =
    "name the file of the store with --store, such as IviConfigurationStore.xml in a folder";
inline constexpr auto kTooLarge = "drivers cannot read it either: take out what nothing needs";
inline constexpr auto kNoXml = "drivers cannot read it either: mend it with a text editor, or put a copy back";
inline constexpr auto kNotUtf8 = "save it as UTF-8 with an editor, and let its first line say encoding=\"UTF-8\"";
inline constexpr auto kNoStore = "name the file of the store with --store; its root element is <IviConfigStore>";
} // namespace remedies

} // namespace store_tool
