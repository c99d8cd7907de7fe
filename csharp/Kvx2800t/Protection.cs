namespace Kvx2800t
{
    /// <summary>The protections of a channel. The instrument has commands of its source for them and, here with Output in front of the
    /// name, of its outputs.</summary>
    public sealed class Protection : Selection
    {
        internal Protection(Session session, string name)
            : base(session, name)
        {
        }

        /// <summary>The level of the over-voltage protection, in volts.</summary>
        public double OvpLimit
        {
            get => Session.GetAttributeViReal64(Name, AttributeId.OvpLimit);
            set => Session.SetAttributeViReal64(Name, AttributeId.OvpLimit, value);
        }

        /// <summary>Whether the over-voltage protection is on.</summary>
        public bool OvpEnabled
        {
            get => Session.GetAttributeViBoolean(Name, AttributeId.OvpEnabled);
            set => Session.SetAttributeViBoolean(Name, AttributeId.OvpEnabled, value);
        }

        /// <summary>The level of the over-current protection, in amperes.</summary>
        public double CurrentLevel
        {
            get => Session.QueryCurrentProtectionLevel(Name);
            set => Session.ConfigureCurrentProtectionLevel(Name, value);
        }

        /// <summary>How long an over-current lasts first, in seconds.</summary>
        public double CurrentDelay
        {
            get => Session.QueryCurrentProtectionDelay(Name);
            set => Session.ConfigureCurrentProtectionDelay(Name, value);
        }

        /// <summary>When that delay applies.</summary>
        public ProtectionDelay CurrentDelayMode
        {
            get => (ProtectionDelay)Session.QueryCurrentProtectionDelayMode(Name);
            set => Session.ConfigureCurrentProtectionDelayMode(Name, (int)value);
        }

        /// <summary>The level of the over-voltage protection, in volts.</summary>
        public double OutputOvpValue
        {
            get => Session.QueryOVPValue(Name);
            set => Session.ConfigureOVPValue(Name, value);
        }

        /// <summary>Whether the over-voltage protection is on.</summary>
        public bool OutputOvpEnabled
        {
            get => Session.QueryOVPEnabled(Name);
            set => Session.ConfigureOVPEnabled(Name, value);
        }

        /// <summary>The level of the over-current protection, in amperes.</summary>
        public double OutputOcpValue
        {
            get => Session.QueryOCPValue(Name);
            set => Session.ConfigureOCPValue(Name, value);
        }

        /// <summary>Whether the over-current protection is on.</summary>
        public bool OutputOcpEnabled
        {
            get => Session.QueryOCPEnabled(Name);
            set => Session.ConfigureOCPEnabled(Name, value);
        }

        /// <summary>How long an over-current lasts first, in seconds.</summary>
        public double OutputOcpDelay
        {
            get => Session.QueryOCPDelay(Name);
            set => Session.ConfigureOCPDelay(Name, value);
        }

        /// <summary>When that delay applies.</summary>
        public ProtectionDelay OutputOcpDelayMode
        {
            get => (ProtectionDelay)Session.QueryOCPDelayMode(Name);
            set => Session.ConfigureOCPDelayMode(Name, (int)value);
        }

        /// <summary>Sets the over-voltage protection.</summary>
        public void ConfigureOvp(bool enabled, double volts)
        {
            Session.ConfigureOVP(Name, enabled, volts);
        }

        /// <summary>What has tripped. Switching the output on ends a trip.</summary>
        public (bool OverVoltage, bool OverCurrent) QueryState()
        {
            return Session.QueryProtectionState(Name);
        }

        /// <summary>Throws OperationNotSupportedException with the profile; without it nothing is done: switching on ends a trip.</summary>
        public void Reset()
        {
            Session.ResetOutputProtection(Name);
        }
    }
}
