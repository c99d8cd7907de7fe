using System;
using System.IO;
using System.Linq;
using System.Reflection;
using System.Text;
using System.Threading;
using System.Threading.Tasks;

namespace Kvx2800t.Tests
{
    /// <summary>Sessions, channels by name, exceptions, texts, threads.</summary>
    internal static class SessionTest
    {
        private const string OutOfRange =
            "Attribute or function parameter value is invalid (out of range or not supported).";

        private const string NoInstrument =
            "I/O error.  Insufficient location information or resource not present in the system";

        public static void ASupplyIsOpenedWithItsOptions()
        {
            using (var instrument = new VirtualInstrument())
            {
                using (var supply = new Supply(instrument.Resource, new Options { QueryInstrumentStatus = true }, true, true))
                {
                    Expect.Lines(instrument, "*IDN?", "*CLS", "*ESR?", "*RST");
                    Expect.Equal(true, supply.GetBoolean(AttributeId.QueryInstrumentStatus));
                    Expect.Equal("Profile:Bench", supply.GetString(AttributeId.DriverSetup));
                    Expect.Equal(instrument.Resource, supply.GetString(AttributeId.IoResourceDescriptor));
                }
                using (var supply = new Supply(instrument.Resource, new Options { Profile = false }))
                {
                    Expect.Lines(instrument, "*IDN?");
                    Expect.Equal("", supply.GetString(AttributeId.DriverSetup));
                }
                using (var supply = new Supply(instrument.Resource, new Options { IoTimeout = 250 }))
                {
                    Expect.Equal(250, supply.IoTimeout);
                }
            }
        }

        public static void DisposeClosesTheSession()
        {
            using (var instrument = new VirtualInstrument())
            {
                var supply = new Supply(instrument.Resource);
                supply.Dispose();
                instrument.ExpectDisconnected();
                supply.Dispose();
                Expect.Throws<ObjectDisposedException>(supply.Reset);
                Expect.Throws<ObjectDisposedException>(() => supply.Channels["CH3"].VoltageLevel = 1.0);
                Expect.Lines(instrument, "*IDN?");
            }
        }

        public static void ASessionThatNothingRefersToIsClosed()
        {
            using (var instrument = new VirtualInstrument())
            {
                // Nothing of it is left on this thread's stack.
                var user = new Thread(() => new Supply(instrument.Resource).Channels["CH3"].VoltageLevel = 1.5);
                user.Start();
                user.Join();
                Expect.Lines(instrument, "*IDN?", ":SOUR3:VOLT 1.500000");
                GC.Collect();
                GC.WaitForPendingFinalizers();
                instrument.ExpectDisconnected();
            }
        }

        public static void ASessionIsNotClosedBelowACall()
        {
            using (var instrument = new VirtualInstrument())
            {
                var supply = new Supply(instrument.Resource);
                instrument.NewLines();
                instrument.Control("delay 300");
                var reading = Task.Run(() => supply.Channels["CH3"].Protection.OvpLimit);
                while (instrument.Lines().Length == 0)
                {
                    Thread.Yield();
                }
                supply.Dispose();
                Expect.Equal(17.6, reading.Result);
                instrument.ExpectDisconnected();
            }
        }

        public static void ChannelsAreNamed()
        {
            using (var supply = Simulated())
            {
                Expect.Equal("CH1", supply.Channels["CH1"].Name);
                Expect.Equal("OutputChannel2", supply.Channels["OutputChannel2"].ToString());
                Expect.Equal("CH1,OutputChannel3", supply.Channels["CH1", "OutputChannel3"].Name);
                Expect.Equal("CH2-2", supply.Channels.Range(2, 2).Name);
                Expect.Equal("Core", supply.Channels["Core"].Protection.Name);
                Expect.Equal(6, supply.Channels.Count);
                Expect.Equal("OutputChannel1 OutputChannel2 OutputChannel3 OutputChannel4 OutputChannel5 OutputChannel6",
                             string.Join(" ", supply.Channels));
            }
        }

        public static void SeveralChannelsAreSetTogetherAndReadAlone()
        {
            With((instrument, supply) =>
            {
                supply.Channels["CH3", "CH4"].VoltageLevel = 2.0;
                supply.Channels.Range(3, 4).VoltageLevel = 2.5;
                supply.ConfigureVoltageLevel("CH4", 1.0);
                supply.ConfigureOutputEnabled("OutputChannel3-4", true);
                Expect.Lines(instrument, ":SOUR3:VOLT 2.000000", ":SOUR4:VOLT 2.000000", ":SOUR3:VOLT 2.500000",
                             ":SOUR4:VOLT 2.500000", ":SOUR4:VOLT 1.000000", ":OUTP:STAT CH3,ON", ":OUTP:STAT CH4,ON");
                Expect.Equal(2.5, supply.Channels["CH3"].VoltageLevel);
                Expect.Equal(new Reading(2.5, 0.0, 0.0), supply.MeasureAll("CH4,CH3")[1]);
                Expect.Equal(2, supply.MeasureAll("CH4,CH3").Length);
                Expect.Throws<BadlyFormedSelectorException>(() => supply.Channels["CH3", "CH4"].Tracking.ToString());
            });
        }

        public static void WhatIsNoNameIsRefused()
        {
            using (var supply = Simulated())
            {
                const string text = "channels have names, such as \"CH1\" or \"OutputChannel1\"";
                foreach (var names in new[] { new string[0], new[] { "" }, new string[] { null }, new[] { "CH1", "" } })
                {
                    Expect.Equal(text, Expect.Throws<ArgumentException>(() => supply.Channels[names].ToString()).Message);
                }
                Expect.Equal("0 to 3 is no range of channels: they count from 1, and the lower one comes first",
                             Expect.Throws<ArgumentException>(() => supply.Channels.Range(0, 3).ToString()).Message);
                Expect.Throws<ArgumentException>(() => supply.Channels.Range(3, 1).ToString());
            }
        }

        public static void ErrorsAreExceptionsOfTheirStatus()
        {
            With((instrument, supply) =>
            {
                Expect.Fails<ValueOutOfRangeException>(
                    "SetAttributeViReal64", 0xBFFA4217, OutOfRange + "  OutputChannel3 takes 0 V to 16 V, not 100 V.",
                    () => supply.Channels["CH3"].VoltageLevel = 100.0);
                Expect.Equal((0, ""), supply.GetError());
                supply.IoTimeout = 100;
                Expect.Throws<IoTimeoutException>(() => supply.Channels["CH3"].List.GetGroup(600));
                Expect.Throws<UnknownPhysicalIdentifierException>(() => supply.Channels["CH9"].VoltageLevel = 1.0);
                Expect.Throws<BadlyFormedSelectorException>(() => supply.ConfigureVoltageLevel("CH3-4-5", 1.0));
                Expect.Throws<OperationNotSupportedException>(supply.Channels["CH3"].Protection.Reset);
                Expect.Throws<InvalidAttributeException>(() => supply.GetString((AttributeId)1));
                LeaveAnErrorOnTheThread(supply.Library);
                const string banana = "  Resource 'BANANA': VI_ERROR_INV_RSRC_NAME, the resource name cannot be read.";
                Expect.Fails<IoException>("InitWithOptions", 0xBFFA4214, NoInstrument + banana,
                                          () => new Supply("BANANA"));
            });
        }

        public static void ErrorsHaveThePlainTextWithoutTheProfile()
        {
            using (var instrument = new VirtualInstrument())
            using (var supply = new Supply(instrument.Resource, new Options { Profile = false }))
            {
                Expect.Fails<ValueOutOfRangeException>("ConfigureVoltageLevel", 0xBFFA4217, OutOfRange,
                                                       () => supply.ConfigureVoltageLevel("OutputChannel3", 16.5));
                Expect.Fails<TypesDoNotMatchException>(
                    "GetAttributeViSession", 0xBFFA0015,
                    "GetAttributeViSession called for attribute 'KVX2800T_ATTR_VOLTAGE_LEVEL' of type 'ViReal64'.",
                    () => supply.GetSession(AttributeId.VoltageLevel));
                Expect.Fails<AttributeNotWritableException>(
                    "SetAttributeViString", 0xBFFA000D, "Attribute 'KVX2800T_ATTR_INSTRUMENT_MODEL' is read-only.",
                    () => supply.SetString(AttributeId.InstrumentModel, "other"));
                Expect.Fails<IoException>(
                    "init", 0xBFFA4214, NoInstrument, () => new Supply("BANANA", new Options { Profile = false }));
            }
        }

        public static void EveryErrorHasItsException()
        {
            var errors = typeof(StatusCode).GetFields().Where(field => field.Name.StartsWith("Error")).ToArray();
            Expect.Equal(45, errors.Length);
            foreach (var error in errors)
            {
                var code = (int)error.GetValue(null);
                var exception = DriverExceptionOf(code);
                var name = error.Name.Substring("Error".Length) + "Exception";
                Expect.True(exception.GetType().Name == name || exception.GetType().Name == "Kvx" + name, name);
                Expect.Equal(code, exception.Code);
            }
            Expect.Equal(typeof(DriverException), DriverExceptionOf(unchecked((int)0xBFFF0015)).GetType());
        }

        public static void TheDriverTellsItsMessages()
        {
            With((instrument, supply) =>
            {
                Expect.Equal("Attribute '%s' is read-only.", supply.ErrorMessage(StatusCode.ErrorAttributeNotWritable));
                Expect.Equal("Attribute '%s' is read-only.", supply.Library.ErrorText(StatusCode.ErrorAttributeNotWritable));
                Expect.Equal("", supply.Library.ErrorText(5));
                Expect.Throws<InvalidValueException>(() => supply.ErrorMessage(5));
                instrument.Control("inject -350 \"Queue overflow\"");
                Expect.Equal((-350, "\"Queue overflow\""), supply.ErrorQuery());
                Expect.Equal((0, "\"No error\""), supply.ErrorQuery());
            });
        }

        public static void TextsKeepLettersBeyondAsciiAndComeWhole()
        {
            foreach (var model in new[] { "Pr\u00fcfstand", "\u96fb\u6e90", "\U0001F50C", new string('x', 249),
                                          new string('x', 250), new string('x', 251), new string('x', 4089), "\u00fc" + new string('x', 4087) })
            {
                using (var supply = new Supply("", new Options { Simulate = true, Profile = false, Model = model }))
                {
                    Expect.Equal("Model:" + model, supply.GetString(AttributeId.DriverSetup));
                }
            }
        }

        public static void TextsThatCannotBePassedAreRefused()
        {
            With((instrument, supply) =>
            {
                Expect.Equal("a text for the driver cannot have a NUL in it",
                             Expect.Throws<ArgumentException>(() => supply.ConfigureVoltageLevel("CH3\0CH4", 1.0)).Message);
                Expect.Throws<ArgumentException>(() => supply.Channels["CH3\0"].Tracking = true);
                Expect.Throws<ArgumentNullException>(() => supply.ConfigureVoltageLevel(null, 1.0));
                Expect.Throws<ArgumentNullException>(() => new Supply(null));
                Expect.Throws<EncoderFallbackException>(() => supply.SelectChannel("\ud800"));
                Expect.Lines(instrument);
            });
        }

        public static void ThreadsShareASession()
        {
            With((instrument, supply) =>
            {
                Parallel.For(0, 200, number =>
                {
                    var channel = supply.Channels["CH" + (3 + number % 2)];
                    using (supply.Lock())
                    {
                        channel.VoltageLevel = number / 100.0;
                        Expect.Equal(number / 100.0, channel.VoltageLevel);
                    }
                    channel.Measure();
                });
                Expect.Equal(600, instrument.NewLines().Length);
            });
        }

        public static void ErrorsBelongToTheirCallsWithinALock()
        {
            With((instrument, supply) =>
            {
                Parallel.For(0, 100, number =>
                {
                    var text = Expect.Throws<ValueOutOfRangeException>(() =>
                    {
                        using (supply.Lock())
                        {
                            supply.ConfigureVoltageLevel(number % 2 == 0 ? "CH3" : "CH4", 99.0);
                        }
                    }).Text;
                    Expect.Equal(OutOfRange + (number % 2 == 0 ? "  OutputChannel3 takes 0 V to 16 V, not 99 V."
                                                               : "  OutputChannel4 takes 0 V to 6.2 V, not 99 V."), text);
                });
            });
        }

        public static void ALockKeepsOtherThreadsOut()
        {
            With((instrument, supply) =>
            {
                Task other;
                using (supply.Lock())
                using (supply.Lock())
                {
                    other = Task.Run(() => supply.ConfigureVoltageLevel("CH4", 1.0));
                    for (var call = 0; call < 20; ++call)
                    {
                        supply.ConfigureVoltageLevel("CH3", 2.0);
                    }
                    Expect.Lines(instrument, Enumerable.Repeat(":SOUR3:VOLT 2.000000", 20).ToArray());
                }
                other.Wait();
                Expect.Lines(instrument, ":SOUR4:VOLT 1.000000");
            });
        }

        public static void MessagesOfTheProgramsOwnAreSent()
        {
            With((instrument, supply) =>
            {
                Expect.Equal("1", supply.Query("*OPC?"));
                supply.Write("*OPC?\n");
                Expect.Equal("1\n", Encoding.ASCII.GetString(supply.ReadResponse()));
                supply.Write("*IDN?");
                Expect.Fails<DriverException>("viRead", 0x3FFA4001, supply.ErrorMessage(StatusCode.WarnArrayTruncated),
                                              () => supply.ReadResponse(4));
                Expect.Equal("1", supply.Query("*OPC?"));
                Expect.Lines(instrument, "*OPC?", "*OPC?", "*IDN?", "*OPC?");
            });
        }

        public static void TheInstrumentHasSettingsAndStatus()
        {
            With((instrument, supply) =>
            {
                supply.SourceMode = SourceMode.Normal;
                Expect.Equal(SourceMode.Normal, supply.SourceMode);
                supply.Bleeder = true;
                Expect.Equal(true, supply.Bleeder);
                supply.SelectChannel("OutputChannel4");
                Expect.Equal(4, supply.SelectedChannel);
                supply.ClearStatus();
                instrument.Control("inject -222 \"Data out of range\"");
                Expect.Equal(EventStatus.ExecutionError, supply.ReadEventStatus());
                supply.Disable();
                supply.Reset();
                supply.ResetWithDefaults();
                Expect.Lines(instrument, ":SOUR:Mode?", ":SOUR:Mode?", ":SOUR:BLE ON", ":SOUR:BLE?", ":INST:SELE CH4",
                             ":INST:SELE?", "*CLS", "*ESR?", ":OUTPut:STATe ALL,OFF", "*RST", "*RST");
                supply.IoTimeout = 1234;
                Expect.Equal(1234, supply.IoTimeout);
                Expect.Equal(("1.0.0.0", "V1.00"), supply.RevisionQuery());
                Expect.Equal(null, supply.SelfTest());
                Expect.Equal("", supply.GetNextCoercionRecord() + supply.GetNextInterchangeWarning());
            });
        }

        public static void MessagesAreRememberedOfASessionThatIsAskedTo()
        {
            With((instrument, plain) =>
            {
                Expect.Equal("", plain.GetNextMessageRecord());
                using (var supply = new Supply(instrument.Resource, new Options { MessageLog = 10 }))
                {
                    while (supply.GetNextMessageRecord() != "")
                    {
                    }
                    Expect.Equal("1", supply.Query("*OPC?"));
                    supply.Write(new string(' ', 2000) + "*CLS");
                    Expect.Equal("> *OPC?", supply.GetNextMessageRecord());
                    Expect.Equal("< 1", supply.GetNextMessageRecord());
                    Expect.Equal("> " + new string(' ', 1018) + "...", supply.GetNextMessageRecord());
                    Expect.Equal("", supply.GetNextMessageRecord());
                }
            });
        }

        public static void AttributesAreReadAndSetAsTheTypeTheyHave()
        {
            With((instrument, supply) =>
            {
                Expect.Equal(6, supply.GetInt32(AttributeId.ChannelCount));
                Expect.Equal("Tessaro Instruments", supply.GetString(AttributeId.InstrumentManufacturer));
                Expect.Equal(17.6, supply.GetReal64(AttributeId.OvpLimit, "OutputChannel3"));
                supply.SetInt32(AttributeId.CurrentLimitBehavior, (int)CurrentLimitBehavior.Trip, "CH3");
                supply.SetReal64(AttributeId.VoltageLevel, 6.2, "CH4");
                supply.SetBoolean(AttributeId.OutputEnabled, true, "CH4");
                Expect.Lines(instrument, ":SOUR3:VOLT:PROT?", ":SOUR3:CURR:PROT:STAT ON", ":SOUR4:VOLT 6.200000",
                             ":OUTP:STAT CH4,ON");
            });
        }

        public static void OptionsAreWords()
        {
            Expect.Equal("DriverSetup=Profile:Bench", new Options().ToString());
            Expect.Equal("", new Options { Profile = false }.ToString());
            Expect.Equal("Cache=1,InterchangeCheck=0,QueryInstrStatus=1,RangeCheck=0,RecordCoercions=0,Simulate=1",
                         new Options
                         {
                             Cache = true, InterchangeCheck = false, QueryInstrumentStatus = true, RangeCheck = false,
                             RecordCoercions = false, Simulate = true, Profile = false,
                         }.ToString());
            Expect.Equal("DriverSetup=Model:KVX2833T,Profile:Bench,SafeErrors:1,FreshReplies:0,DetailedErrors:1," +
                         "TrueReadings:0,CheckedOptions:1,StatefulSimulation:0,OpenTimeout:3000,IoTimeout:Infinite,BaudRate:115200," +
                         "DataBits:7,Parity:Even,StopBits:1.5,FlowControl:RtsCts,MessageLog:100",
                         new Options
                         {
                             Model = "KVX2833T", SafeErrors = true, FreshReplies = false, DetailedErrors = true,
                             TrueReadings = false, CheckedOptions = true, StatefulSimulation = false, OpenTimeout = 3000,
                             IoTimeout = Timeout.Infinite, BaudRate = 115200, DataBits = 7, Parity = Parity.Even,
                             StopBits = StopBits.OneAndHalf, FlowControl = FlowControl.RtsCts, MessageLog = 100,
                         }.ToString());
        }

        public static void OptionsAreAllKnownToTheDriver()
        {
            foreach (Parity parity in Enum.GetValues(typeof(Parity)))
            {
                Open(new Options { Simulate = true, Parity = parity, OpenTimeout = Timeout.Infinite });
            }
            foreach (StopBits stopBits in Enum.GetValues(typeof(StopBits)))
            {
                Open(new Options { Simulate = true, StopBits = stopBits, BaudRate = 9600, DataBits = 5 });
            }
            foreach (FlowControl flowControl in Enum.GetValues(typeof(FlowControl)))
            {
                Open(new Options { Simulate = true, FlowControl = flowControl });
            }
        }

        public static void OptionsRefuseWhatCannotBeSaid()
        {
            foreach (var model in new[] { "", "A,B", "A;B", "A:B", "A=B", "\"A\"", "'A'", "A\nB", "A\tB", "A\0B",
                                          "A\x7f", " A", "A " })
            {
                Expect.Throws<ArgumentException>(() => new Options { Model = model }.ToString());
            }
            Expect.Throws<ArgumentException>(() => new Options { OpenTimeout = -2 }.ToString());
            Expect.Throws<ArgumentException>(() => new Options { BaudRate = -1 }.ToString());
            Expect.Throws<ArgumentException>(() => new Options { DataBits = 9 }.ToString());
            Expect.Throws<ArgumentException>(() => new Options { DataBits = 4 }.ToString());
        }

        public static void ADriverThatIsNotThereIsSaidToBe()
        {
            var exception = Expect.Throws<DriverNotInstalledException>(() => new Library("/no-such-folder/driver.so"));
            Expect.Equal("the KVX2800T driver is not installed, or its library cannot be loaded. Looked at:\n" +
                         "  /no-such-folder/driver.so: there is no such file\n" +
                         "Install the driver, or name its library by the environment variable KVX2800T_LIBRARY.",
                         exception.Message);
            Expect.Equal(1, exception.Places.Count);
            Expect.Equal("/no-such-folder/driver.so", exception.Places[0].Key);
            Expect.Equal("there is no such file", exception.Places[0].Value);
        }

        public static void AFileThatIsNotTheDriverIsTold()
        {
            var other = Path.GetTempFileName();
            try
            {
                File.WriteAllText(other, "no library");
                Expect.Equal($"{other}: file too short",
                             Expect.Throws<DriverNotInstalledException>(() => new Library(other)).Places[0].Value);
            }
            finally
            {
                File.Delete(other);
            }
            Expect.Equal("it has no function KVX2800T_init",
                         Expect.Throws<DriverNotInstalledException>(() => new Library("libc.so.6")).Places[0].Value);
        }

        /// <summary>As other users of the driver in this process may.</summary>
        private static void LeaveAnErrorOnTheThread(Library library)
        {
            const BindingFlags any = BindingFlags.Instance | BindingFlags.NonPublic;
            var functions = typeof(Library).GetProperty("Functions", any).GetValue(library);
            var init = (Delegate)functions.GetType().GetField("init", any).GetValue(functions);
            var status = (int)init.DynamicInvoke(Encoding.ASCII.GetBytes("APPLE\0"), (ushort)0, (ushort)0, 0u);
            Expect.Equal(StatusCode.ErrorIo, status);
        }

        private static DriverException DriverExceptionOf(int status)
        {
            var of = typeof(DriverException).GetMethod(
                "Of", BindingFlags.Static | BindingFlags.NonPublic);
            return (DriverException)of.Invoke(null, new object[] { status, "text", "KVX2800T_reset" });
        }

        private static void Open(Options options)
        {
            using (var supply = new Supply("", options))
            {
                Expect.Equal(options.ToString(), "Simulate=1,DriverSetup=" + supply.GetString(AttributeId.DriverSetup));
            }
        }

        private static Supply Simulated()
        {
            return new Supply("", new Options { Simulate = true });
        }

        private static void With(Action<VirtualInstrument, Supply> test)
        {
            using (var instrument = new VirtualInstrument())
            using (var supply = new Supply(instrument.Resource))
            {
                instrument.NewLines();
                test(instrument, supply);
            }
        }
    }
}
