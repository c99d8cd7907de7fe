namespace Kvx2800t
{
    /// <summary>Channels of a supply. Their settings can be set on several and read of one.</summary>
    public abstract class Selection
    {
        internal Selection(Session session, string name)
        {
            Session = session;
            Name = name;
        }

        /// <summary>The channels, as the driver's functions take them.</summary>
        public string Name { get; }

        internal Session Session { get; }

        /// <summary>The same.</summary>
        public override string ToString()
        {
            return Name;
        }
    }

    /// <summary>A channel of a supply; from Supply.Channels. One that names several channels can be set, but not read.</summary>
    public sealed class Channel : Selection
    {
        internal Channel(Session session, string name)
            : base(session, name)
        {
        }

        /// <summary>The voltage setting, in volts.</summary>
        public double VoltageLevel
        {
            get => Session.GetAttributeViReal64(Name, AttributeId.VoltageLevel);
            set => Session.SetAttributeViReal64(Name, AttributeId.VoltageLevel, value);
        }

        /// <summary>The current limit, in amperes.</summary>
        public double CurrentLimit
        {
            get => Session.GetAttributeViReal64(Name, AttributeId.CurrentLimit);
            set => Session.SetAttributeViReal64(Name, AttributeId.CurrentLimit, value);
        }

        /// <summary>What the output does at its current limit.</summary>
        public CurrentLimitBehavior CurrentLimitBehavior
        {
            get => (CurrentLimitBehavior)Session.GetAttributeViInt32(Name, AttributeId.CurrentLimitBehavior);
            set => Session.SetAttributeViInt32(Name, AttributeId.CurrentLimitBehavior, (int)value);
        }

        /// <summary>Whether the output is on.</summary>
        public bool OutputEnabled
        {
            get => Session.GetAttributeViBoolean(Name, AttributeId.OutputEnabled);
            set => Session.SetAttributeViBoolean(Name, AttributeId.OutputEnabled, value);
        }

        /// <summary>Whether the voltage is sensed at the load.</summary>
        public bool RemoteSense
        {
            get => Session.QueryRemoteSense(Name);
            set => Session.ConfigureRemoteSense(Name, value);
        }

        /// <summary>The same by the output's command.</summary>
        public bool OutputSense
        {
            get => Session.QueryOutputSense(Name);
            set => Session.ConfigureOutputSense(Name, value);
        }

        /// <summary>What it does when the instrument is switched on.</summary>
        public PowerOnState PowerOnState
        {
            get => (PowerOnState)Session.QueryPowerOnState(Name);
            set => Session.ConfigurePowerOnState(Name, (int)value);
        }

        /// <summary>The pairing.</summary>
        public Pairing Pairing
        {
            get => (Pairing)Session.QueryPairing(Name);
            set => Session.ConfigurePairing(Name, (int)value);
        }

        /// <summary>Whether it follows the channel that it is tracked to.</summary>
        public bool Tracking
        {
            get => Session.QueryTracking(Name);
            set => Session.ConfigureTracking(Name, value);
        }

        /// <summary>What the bleeder does while the output is off.</summary>
        public OutputOffMode OutputOffMode
        {
            get => (OutputOffMode)Session.QueryOutputOffMode(Name);
            set => Session.ConfigureOutputOffMode(Name, (int)value);
        }

        /// <summary>Whether its list waits for a trigger.</summary>
        public bool TriggerInput
        {
            get => Session.QueryTriggerInput(Name);
            set => Session.ConfigureTriggerInput(Name, value);
        }

        /// <summary>The range of the current measurement.</summary>
        public CurrentRange CurrentRange
        {
            get => (CurrentRange)Session.QueryCurrentRange(Name);
            set => Session.ConfigureCurrentRange(Name, (int)value);
        }

        /// <summary>The rate of the current measurement.</summary>
        public CurrentRate CurrentRate
        {
            get => (CurrentRate)Session.QueryCurrentRate(Name);
            set => Session.ConfigureCurrentRate(Name, (int)value);
        }

        /// <summary>Sets the current limit and what happens there.</summary>
        public void ConfigureCurrentLimit(CurrentLimitBehavior behavior, double amperes)
        {
            Session.ConfigureCurrentLimit(Name, (int)behavior, amperes);
        }

        /// <summary>Changes nothing; channels have one range each.</summary>
        public void ConfigureOutputRange(RangeType rangeType, double value)
        {
            Session.ConfigureOutputRange(Name, (int)rangeType, value);
        }

        /// <summary>The largest voltage that it takes at a current, in volts.</summary>
        public double MaxVoltageLevel(double amperes = 0.0)
        {
            return Session.QueryMaxVoltageLevel(Name, amperes);
        }

        /// <summary>The largest current that it takes at a voltage, in amperes.</summary>
        public double MaxCurrentLimit(double volts = 0.0)
        {
            return Session.QueryMaxCurrentLimit(Name, volts);
        }

        /// <summary>What the meters read.</summary>
        public Reading Measure()
        {
            return Session.MeasureAll(Name, 1)[0];
        }

        /// <summary>What one of them reads, in amperes, volts or watts.</summary>
        public double Meter(MeasurementType measurement)
        {
            return Session.MeasureOutput(Name, (int)measurement);
        }

        /// <summary>Its protections.</summary>
        public Protection Protection => new Protection(Session, Name);

        /// <summary>What it is doing.</summary>
        public ChannelState State => new ChannelState(Session, Name);

        /// <summary>Its list.</summary>
        public ListProgram List => new ListProgram(Session, Name);

        /// <summary>The waveform that its list is made from.</summary>
        public ListTemplate ListTemplate => new ListTemplate(Session, Name);

        /// <summary>Its delay program.</summary>
        public DelayProgram Delay => new DelayProgram(Session, Name);

        /// <summary>The times that its delay program is made from.</summary>
        public DelayGenerator DelayGenerator => new DelayGenerator(Session, Name);
    }
}
