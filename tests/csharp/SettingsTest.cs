using System;

namespace Kvx2800t.Tests
{
    /// <summary>What settings send: channel 3 of a session with the profile on, whose output 10 ohms load.</summary>
    internal static class SettingsTest
    {
        private const string Selected = ":INST:SELE CH3";

        public static void ChannelsKeepTheirSettings()
        {
            Run((instrument, channel) =>
            {
                var kept = new Kept(instrument);
                kept.Is(v => channel.VoltageLevel = v, () => channel.VoltageLevel, 5.0, ":SOUR3:VOLT 5.000000", ":SOUR3:VOLT?");
                kept.Is(v => channel.CurrentLimitBehavior = v, () => channel.CurrentLimitBehavior,
                        CurrentLimitBehavior.Trip, ":SOUR3:CURR:PROT:STAT ON", ":SOUR3:CURR:PROT:STAT?");
                kept.Is(v => channel.OutputEnabled = v, () => channel.OutputEnabled, true, ":OUTP:STAT CH3,ON", ":OUTP:STAT? CH3");
                kept.Is(v => channel.RemoteSense = v, () => channel.RemoteSense, true, ":SOUR3:VOLT:SENS ON", ":SOUR3:VOLT:SENS?");
                kept.Is(v => channel.OutputSense = v, () => channel.OutputSense, false, ":OUTP:SENS:STAT CH3,OFF",
                        ":OUTP:SENS:STAT? CH3");
                kept.Is(v => channel.PowerOnState = v, () => channel.PowerOnState, PowerOnState.LastOff,
                        ":OUTP:PONS:STAT CH3,LOFF", ":OUTP:PONS:STAT? CH3");
                kept.Is(v => channel.Pairing = v, () => channel.Pairing, Pairing.Parallel, ":OUTP:PAIR CH3,PAR", ":OUTP:PAIR? CH3");
                kept.Is(v => channel.Tracking = v, () => channel.Tracking, true, ":OUTP:TRAC:STAT CH3,ON", ":OUTP:TRAC:STAT? CH3");
                kept.Is(v => channel.OutputOffMode = v, () => channel.OutputOffMode, OutputOffMode.BleederOff,
                        ":OUTP:OFFM CH3,BLEOFF", ":OUTP:OFFM? CH3");
                kept.Is(v => channel.TriggerInput = v, () => channel.TriggerInput, true, ":TRIG:IN:ENAB CH3,ON", ":TRIG:IN:ENAB? CH3");
                kept.Is(v => channel.CurrentRange = v, () => channel.CurrentRange, CurrentRange.High,
                        ":MEAS:CURR:RANG CH3,HIGH", ":MEAS:CURR:RANG? CH3");
                kept.Is(v => channel.CurrentRate = v, () => channel.CurrentRate, CurrentRate.Rate8000,
                        ":MEAS:CURR:RATE CH3,8000", ":MEAS:CURR:RATE? CH3");
            });
        }

        public static void ChannelsLimitTheirCurrent()
        {
            Run((instrument, channel) =>
            {
                channel.CurrentLimit = 0.5;
                Expect.Equal(0.5, channel.CurrentLimit);
                Expect.Lines(instrument, ":SOUR3:CURR 0.500000", ":SOUR3:CURR:PROT 0.500000", ":SOUR3:CURR?");
                channel.ConfigureCurrentLimit(CurrentLimitBehavior.Regulate, 1.5);
                Expect.Lines(instrument, ":SOUR3:CURR 1.500000", ":SOUR3:CURR:PROT 1.500000", ":SOUR3:CURR:PROT:STAT OFF");
                Expect.Equal(16.0, channel.MaxVoltageLevel());
                Expect.Equal(3.2, channel.MaxCurrentLimit());
                channel.ConfigureOutputRange(RangeType.Voltage, 5.0);
                Expect.Lines(instrument);
            });
        }

        public static void ProtectionsKeepTheirSettings()
        {
            Run((instrument, channel) =>
            {
                var kept = new Kept(instrument);
                var its = channel.Protection;
                its.ConfigureOvp(true, 6.0);
                Expect.Lines(instrument, ":SOUR3:VOLT:PROT 6.000000", ":SOUR3:VOLT:PROT:STAT ON");
                kept.Is(v => its.OvpLimit = v, () => its.OvpLimit, 6.5, ":SOUR3:VOLT:PROT 6.500000", ":SOUR3:VOLT:PROT?");
                kept.Is(v => its.OvpEnabled = v, () => its.OvpEnabled, false, ":SOUR3:VOLT:PROT:STAT OFF", ":SOUR3:VOLT:PROT:STAT?");
                kept.Is(v => its.CurrentLevel = v, () => its.CurrentLevel, 1.25, ":SOUR3:CURR:PROT 1.250000", ":SOUR3:CURR:PROT?");
                kept.Is(v => its.CurrentDelay = v, () => its.CurrentDelay, 0.25, ":SOUR3:CURR:PROT:DEL 0.250000",
                        ":SOUR3:CURR:PROT:DEL?");
                kept.Is(v => its.CurrentDelayMode = v, () => its.CurrentDelayMode, ProtectionDelay.Scheduled,
                        ":SOUR3:CURR:PROT:DEL:MODE SCH", ":SOUR3:CURR:PROT:DEL:MODE?");
                kept.Is(v => its.OutputOvpValue = v, () => its.OutputOvpValue, 7.0, ":OUTP:OVP:VAL CH3,7.000000",
                        ":OUTP:OVP:VAL? CH3");
                kept.Is(v => its.OutputOvpEnabled = v, () => its.OutputOvpEnabled, true, ":OUTP:OVP:STAT CH3,ON",
                        ":OUTP:OVP:STAT? CH3");
                kept.Is(v => its.OutputOcpValue = v, () => its.OutputOcpValue, 1.5, ":OUTP:OCP:VAL CH3,1.500000",
                        ":OUTP:OCP:VAL? CH3");
                kept.Is(v => its.OutputOcpEnabled = v, () => its.OutputOcpEnabled, true, ":OUTP:OCP:STAT CH3,ON",
                        ":OUTP:OCP:STAT? CH3");
                kept.Is(v => its.OutputOcpDelay = v, () => its.OutputOcpDelay, 0.5, ":OUTP:OCP:DEL CH3,0.500000",
                        ":OUTP:OCP:DEL? CH3");
                kept.Is(v => its.OutputOcpDelayMode = v, () => its.OutputOcpDelayMode, ProtectionDelay.Any,
                        ":OUTP:OCP:DEL:MODE CH3,ANY", ":OUTP:OCP:DEL:MODE? CH3");
            });
        }

        public static void ChannelsTellWhatHasTripped()
        {
            Run((instrument, channel) =>
            {
                Expect.Equal((false, false), channel.Protection.QueryState());
                channel.Protection.ConfigureOvp(true, 4.0);
                SwitchOn(channel);
                Expect.Equal((true, false), channel.Protection.QueryState());
                Expect.Equal(Questionable.OverVoltage, channel.State.Condition);
            });
        }

        public static void ChannelsTellWhatTheyDo()
        {
            Run((instrument, channel) =>
            {
                SwitchOn(channel);
                instrument.NewLines();
                Expect.Equal(Regulation.ConstantVoltage, channel.State.Regulation);
                Expect.Equal(Questionable.ConstantVoltage, channel.State.Condition);
                Expect.Equal(Questionable.ConstantVoltage, channel.State.ReadEvent());
                const string register = ":STATus:QUEStionable:INSTrument:ISUMmary3:";
                Expect.Lines(instrument, ":OUTP:CVCC? CH3", register + "CONDition?", register + "EVENt?");
                Expect.Equal(true, channel.State.IsIn(OutputState.ConstantVoltage));
                Expect.Equal(false, channel.State.IsIn(OutputState.ConstantCurrent));
            });
        }

        public static void ChannelsAreMeasured()
        {
            Run((instrument, channel) =>
            {
                SwitchOn(channel);
                instrument.NewLines();
                Expect.Equal(new Reading(5.0, 0.5, 2.5), channel.Measure());
                Expect.Equal(5.0, channel.Meter(MeasurementType.Voltage));
                Expect.Equal(0.5, channel.Meter(MeasurementType.Current));
                Expect.Equal(2.5, channel.Meter(MeasurementType.Power));
                Expect.Lines(instrument, ":MEAS:ALL? CH3", ":MEAS:VOLT? CH3", ":MEAS:CURR? CH3", ":MEAS:POWE? CH3");
            });
        }

        public static void ListsAreLoadedAndRun()
        {
            Run((instrument, channel) =>
            {
                var list = channel.List;
                list.Load(new ListGroup(5.0, 1.0, 0.5), new ListGroup(4.0, 1.0, 3600.0));
                Expect.Lines(instrument, Selected, ":LIST:GROUP:CLE", ":LIST:GROUP:PARA 1,5.000000,1.000000,0.500000",
                             ":LIST:GROUP:PARA 2,4.000000,1.000000,3600.000000");
                var kept = new Kept(instrument, Selected);
                kept.Is(v => list.Cycles = v, () => list.Cycles, 3, ":LIST:CYCLE 3", ":LIST:CYCLE?");
                kept.Is(v => list.EndState = v, () => list.EndState, ListEnd.Last, ":LIST:ENDS LAST", ":LIST:ENDS?");
                list.Run();
                Expect.Lines(instrument, Selected, ":LIST:STAT ON", ":OUTP:STAT CH3,ON");
                instrument.Control("advance 500");
                var (state, _, group, remainingCycles) = list.QueryStatus();
                Expect.Equal((ListState.Running, 2, 3), (state, group, remainingCycles));
                Expect.Equal(true, list.Enabled);
                Expect.Lines(instrument, Selected, ":LIST:STATUS?", Selected, ":LIST:STAT?");
                list.Pause();
                Expect.Lines(instrument, Selected, ":OUTP:STAT CH3,OFF");
                Expect.Equal(ListState.Paused, list.QueryStatus().State);
                list.Stop();
                Expect.Equal(ListState.Stopped, list.QueryStatus().State);
            });
        }

        public static void ListsAreEdited()
        {
            Run((instrument, channel) =>
            {
                channel.List.SetGroup(1, new ListGroup(5.0, 1.0, 0.5));
                channel.List.InsertGroup(1);
                Expect.Equal(2, channel.List.GroupCount);
                Expect.Equal(new ListGroup(5.0, 1.0, 0.5), channel.List.GetGroup(2));
                channel.List.DeleteGroup(1);
                Expect.Equal(1, channel.List.GroupCount);
                channel.List.Clear();
                Expect.Equal(0, channel.List.GroupCount);
                channel.List.Load();
                Expect.Equal(0, channel.List.GroupCount);
            });
        }

        public static void ListsAreMadeOfTemplates()
        {
            Run((instrument, channel) =>
            {
                var kept = new Kept(instrument, Selected);
                var its = channel.ListTemplate;
                kept.Is(v => its.Waveform = v, () => its.Waveform, Waveform.UpDown, ":LIST:TEMP:SEL UPDN", ":LIST:TEMP:SEL?");
                kept.Is(v => its.Maximum = v, () => its.Maximum, 5.0, ":LIST:TEMP:MAXV 5.000000", ":LIST:TEMP:MAXV?");
                kept.Is(v => its.Minimum = v, () => its.Minimum, 1.0, ":LIST:TEMP:MINV 1.000000", ":LIST:TEMP:MINV?");
                kept.Is(v => its.Period = v, () => its.Period, 2.0, ":LIST:TEMP:PERI 2.000000", ":LIST:TEMP:PERI?");
                kept.Is(v => its.Interval = v, () => its.Interval, 0.5, ":LIST:TEMP:INTE 0.500000", ":LIST:TEMP:INTE?");
                kept.Is(v => its.Cycles = v, () => its.Cycles, 4, ":LIST:TEMP:CYCLE 4", ":LIST:TEMP:CYCLE?");
                kept.Is(v => its.Inverted = v, () => its.Inverted, true, ":LIST:TEMP:INVE ON", ":LIST:TEMP:INVE?");
                kept.Is(v => its.PulseWidth = v, () => its.PulseWidth, 0.25, ":LIST:TEMP:WIDT 0.250000", ":LIST:TEMP:WIDT?");
                kept.Is(v => its.PulseCount = v, () => its.PulseCount, 8, ":LIST:TEMP:PULSECount 8", ":LIST:TEMP:PULSECount?");
                kept.Is(v => its.Symmetry = v, () => its.Symmetry, 40, ":LIST:TEMP:SYMM 40", ":LIST:TEMP:SYMM?");
                kept.Is(v => its.Start = v, () => its.Start, 2, ":LIST:TEMP:STAI 2", ":LIST:TEMP:STAI?");
                kept.Is(v => its.Expp = v, () => its.Expp, 20, ":LIST:TEMP:EXPP 20", ":LIST:TEMP:EXPP?");
                kept.Is(v => its.Expr = v, () => its.Expr, 5, ":LIST:TEMP:EXPR 5", ":LIST:TEMP:EXPR?");
                its.Object = new ListTemplateObject(ListObject.Voltage, 0.75);
                Expect.Equal(new ListTemplateObject(ListObject.Voltage, 0.75), its.Object);
                Expect.Equal(4, its.Points);
                instrument.NewLines();
                its.Construct();
                Expect.Lines(instrument, Selected, ":LIST:TEMP:CONSTruct 1");
                Expect.Equal(4, channel.List.GroupCount);
            });
        }

        public static void DelayProgramsAreLoadedAndRun()
        {
            Run((instrument, channel) =>
            {
                var delay = channel.Delay;
                delay.Load(new DelayGroup(false, 0.5), new DelayGroup(true, 3600.0));
                Expect.Lines(instrument, Selected, ":DELAY:GROUP:CLEar", ":DELAY:GROUP:PARAmeter 1,OFF,0.500000",
                             ":DELAY:GROUP:PARAmeter 2,ON,3600.000000");
                var kept = new Kept(instrument, Selected);
                kept.Is(v => delay.Cycles = v, () => delay.Cycles, 2, ":DELAY:CYCLEs 2", ":DELAY:CYCLEs?");
                kept.Is(v => delay.EndState = v, () => delay.EndState, DelayEnd.On, ":DELAY:ENDState ON", ":DELAY:ENDState?");
                delay.Start();
                Expect.Lines(instrument, Selected, ":DELAY:STATe ON");
                instrument.Control("advance 500");
                var (state, _, group, remainingCycles) = delay.QueryStatus();
                Expect.Equal((DelayState.Running, 2, 2), (state, group, remainingCycles));
                Expect.Equal(true, delay.Enabled);
                delay.Stop();
                Expect.Equal(DelayState.Stopped, delay.QueryStatus().State);
            });
        }

        public static void DelayProgramsAreEdited()
        {
            Run((instrument, channel) =>
            {
                channel.Delay.SetGroup(1, new DelayGroup(true, 0.5));
                channel.Delay.InsertGroup(1);
                Expect.Equal(2, channel.Delay.GroupCount);
                Expect.Equal(new DelayGroup(true, 0.5), channel.Delay.GetGroup(2));
                Expect.Equal(false, channel.Delay.GetGroup(1).On);
                channel.Delay.DeleteGroup(1);
                Expect.Equal(1, channel.Delay.GroupCount);
                channel.Delay.Clear();
                Expect.Equal(0, channel.Delay.GroupCount);
            });
        }

        public static void DelayProgramsAreGenerated()
        {
            Run((instrument, channel) =>
            {
                var kept = new Kept(instrument, Selected);
                var its = channel.DelayGenerator;
                const string generate = ":DELAY:GENerate:";
                kept.Is(v => its.Times = v, () => its.Times, DelayTimes.Increasing, generate + "SELect INC", generate + "SELect?");
                kept.Is(v => its.Pattern = v, () => its.Pattern, DelayPattern.OnOff, generate + "PATT 10P", generate + "PATT?");
                kept.Is(v => its.Points = v, () => its.Points, 8, generate + "POINTs 8", generate + "POINTs?");
                kept.Is(v => its.OnTime = v, () => its.OnTime, 0.5, generate + "TIMe:ON 0.500000", generate + "TIMe:ON?");
                kept.Is(v => its.OffTime = v, () => its.OffTime, 0.25, generate + "TIMe:OFF 0.250000", generate + "TIMe:OFF?");
                kept.Is(v => its.BaseTime = v, () => its.BaseTime, 1.5, generate + "TIMe:BASE 1.500000", generate + "TIMe:BASE?");
                kept.Is(v => its.TimeStep = v, () => its.TimeStep, 0.125, generate + "TIMe:STEP 0.125000", generate + "TIMe:STEP?");
                its.Construct();
                Expect.Lines(instrument, Selected, generate + "CONSTruct 1");
                Expect.Equal(8, channel.Delay.GroupCount);
            });
        }

        private static void SwitchOn(Channel channel)
        {
            channel.VoltageLevel = 5.0;
            channel.CurrentLimit = 1.0;
            channel.OutputEnabled = true;
        }

        private static void Run(Action<VirtualInstrument, Channel> test)
        {
            using (var instrument = new VirtualInstrument())
            using (var supply = new Supply(instrument.Resource))
            {
                instrument.Control("load CH3 10");
                instrument.NewLines();
                test(instrument, supply.Channels["CH3"]);
            }
        }

        /// <summary>Each value is sent by one line, asked for by another, and comes back.</summary>
        private sealed class Kept
        {
            private readonly VirtualInstrument instrument;
            private readonly string before;

            internal Kept(VirtualInstrument instrument, string before = null)
            {
                this.instrument = instrument;
                this.before = before;
            }

            internal void Is<T>(Action<T> set, Func<T> get, T value, string sent, string asked)
            {
                set(value);
                Expect.Equal(value, get(), sent);
                if (before == null)
                {
                    Expect.Lines(instrument, sent, asked);
                }
                else
                {
                    Expect.Lines(instrument, before, sent, before, asked);
                }
            }
        }
    }
}
