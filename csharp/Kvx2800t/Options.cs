using System;
using System.Collections.Generic;
using System.Globalization;
using System.Linq;
using System.Threading;

namespace Kvx2800t
{
    /// <summary>The parity of a serial line.</summary>
    public enum Parity
    {
        /// <summary>No parity bit.</summary>
        None,

        /// <summary>An odd number of ones.</summary>
        Odd,

        /// <summary>An even number of ones.</summary>
        Even,

        /// <summary>Always one.</summary>
        Mark,

        /// <summary>Always zero.</summary>
        Space,
    }

    /// <summary>The stop bits of a serial line.</summary>
    public enum StopBits
    {
        /// <summary>One.</summary>
        One,

        /// <summary>One and a half.</summary>
        OneAndHalf,

        /// <summary>Two.</summary>
        Two,
    }

    /// <summary>The flow control of a serial line.</summary>
    public enum FlowControl
    {
        /// <summary>None.</summary>
        None,

        /// <summary>By characters.</summary>
        XonXoff,

        /// <summary>By the lines RTS and CTS.</summary>
        RtsCts,

        /// <summary>By the lines DTR and DSR.</summary>
        DtrDsr,
    }

    /// <summary>
    /// What a session is opened with. What is null is left to the driver and to the configuration store. Everything
    /// from Model to MessageLog takes the place of all that the store's DriverSetup says; without any of it, Profile
    /// included, that holds.
    /// </summary>
    public sealed class Options
    {
        private static readonly string[] StopBitsTexts = { "1", "1.5", "2" };

        /// <summary>Whether values of attributes are cached.</summary>
        public bool? Cache { get; set; }

        /// <summary>Whether interchangeability is checked.</summary>
        public bool? InterchangeCheck { get; set; }

        /// <summary>Whether each function asks the instrument for errors.</summary>
        public bool? QueryInstrumentStatus { get; set; }

        /// <summary>Whether values are checked before they are sent.</summary>
        public bool? RangeCheck { get; set; }

        /// <summary>Whether coercions are recorded.</summary>
        public bool? RecordCoercions { get; set; }

        /// <summary>Whether there is no instrument.</summary>
        public bool? Simulate { get; set; }

        /// <summary>The model that is simulated.</summary>
        public string Model { get; set; }

        /// <summary>Switches the six behaviours below on, each unless it is given.</summary>
        public bool Profile { get; set; } = true;

        /// <summary>The driver throws nothing and leaves no session locked.</summary>
        public bool? SafeErrors { get; set; }

        /// <summary>No reply answers another query; a lost connection is made anew.</summary>
        public bool? FreshReplies { get; set; }

        /// <summary>Texts of errors name resource, channel, value and limits.</summary>
        public bool? DetailedErrors { get; set; }

        /// <summary>Measuring reads the meters, output states are the registers'.</summary>
        public bool? TrueReadings { get; set; }

        /// <summary>Options and identities that make no sense fail the opening.</summary>
        public bool? CheckedOptions { get; set; }

        /// <summary>A simulated instrument keeps what it is set to.</summary>
        public bool? StatefulSimulation { get; set; }

        /// <summary>Milliseconds that opening waits, or Timeout.Infinite.</summary>
        public int? OpenTimeout { get; set; }

        /// <summary>Milliseconds that a read or a write waits, or Timeout.Infinite.</summary>
        public int? IoTimeout { get; set; }

        /// <summary>The bits a second of a serial line.</summary>
        public int? BaudRate { get; set; }

        /// <summary>The bits of a character of a serial line, 5 to 8.</summary>
        public int? DataBits { get; set; }

        /// <summary>The parity of a serial line.</summary>
        public Parity? Parity { get; set; }

        /// <summary>The stop bits of a serial line.</summary>
        public StopBits? StopBits { get; set; }

        /// <summary>The flow control of a serial line.</summary>
        public FlowControl? FlowControl { get; set; }

        /// <summary>How many of its last messages the session remembers, 1 to 10000.</summary>
        public int? MessageLog { get; set; }

        /// <summary>The option string. Throws ArgumentException for a value that it cannot have.</summary>
        public override string ToString()
        {
            var inherent = Given('=', ("Cache", Switch(Cache)), ("InterchangeCheck", Switch(InterchangeCheck)),
                                 ("QueryInstrStatus", Switch(QueryInstrumentStatus)),
                                 ("RangeCheck", Switch(RangeCheck)), ("RecordCoercions", Switch(RecordCoercions)),
                                 ("Simulate", Switch(Simulate)));
            var setup = string.Join(",", DriverSetup());
            return string.Join(",", setup.Length == 0 ? inherent : inherent.Concat(new[] { "DriverSetup=" + setup }));
        }

        private IEnumerable<string> DriverSetup()
        {
            return Given(':', ("Model", Word(Model)), ("Profile", Profile ? "Bench" : null),
                         ("SafeErrors", Switch(SafeErrors)), ("FreshReplies", Switch(FreshReplies)),
                         ("DetailedErrors", Switch(DetailedErrors)), ("TrueReadings", Switch(TrueReadings)),
                         ("CheckedOptions", Switch(CheckedOptions)),
                         ("StatefulSimulation", Switch(StatefulSimulation)),
                         ("OpenTimeout", Milliseconds(OpenTimeout)), ("IoTimeout", Milliseconds(IoTimeout)),
                         ("BaudRate", Number(BaudRate)), ("DataBits", Number(Character(DataBits))),
                         ("Parity", Parity?.ToString()),
                         ("StopBits", StopBits.HasValue ? StopBitsTexts[(int)StopBits.Value] : null),
                         ("FlowControl", FlowControl?.ToString()), ("MessageLog", Number(MessageLog)));
        }

        private static IEnumerable<string> Given(char separator, params (string Name, string Value)[] options)
        {
            return options.Where(option => option.Value != null)
                .Select(option => option.Name + separator + option.Value);
        }

        private static string Switch(bool? value)
        {
            return value == null ? null : value.Value ? "1" : "0";
        }

        private static string Number(int? value)
        {
            return value < 0 ? throw new ArgumentException($"{value} is less than 0")
                             : value?.ToString(CultureInfo.InvariantCulture);
        }

        private static string Milliseconds(int? value)
        {
            return value == Timeout.Infinite ? "Infinite" : Number(value);
        }

        private static int? Character(int? bits)
        {
            return bits < 5 || bits > 8 ? throw new ArgumentException($"a character has 5 to 8 data bits, not {bits}")
                                        : bits;
        }

        /// <summary>A value in an option string ends at a comma, the string at a line's end.</summary>
        private static string Word(string value)
        {
            if (value != null && (value.Length == 0 || value != value.Trim() || value.Any(IsSeparator)))
            {
                throw new ArgumentException(
                    $"\"{value}\" has separators, quotes, control characters or blanks at its ends, or is empty");
            }
            return value;
        }

        private static bool IsSeparator(char character)
        {
            return char.IsControl(character) || ",;:=\"'".IndexOf(character) >= 0;
        }
    }
}
