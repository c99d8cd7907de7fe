namespace Kvx2800t
{
    /// <summary>What the meters of an output read.</summary>
    public struct Reading
    {
        /// <summary>Of these values.</summary>
        public Reading(double volts, double amperes, double watts)
        {
            Volts = volts;
            Amperes = amperes;
            Watts = watts;
        }

        /// <summary>The voltage.</summary>
        public double Volts { get; }

        /// <summary>The current.</summary>
        public double Amperes { get; }

        /// <summary>The power.</summary>
        public double Watts { get; }
    }

    /// <summary>The levels of an output for a time.</summary>
    public struct ListGroup
    {
        /// <summary>Of these values.</summary>
        public ListGroup(double volts, double amperes, double seconds)
        {
            Volts = volts;
            Amperes = amperes;
            Seconds = seconds;
        }

        /// <summary>The voltage.</summary>
        public double Volts { get; }

        /// <summary>The current.</summary>
        public double Amperes { get; }

        /// <summary>The time.</summary>
        public double Seconds { get; }
    }

    /// <summary>What follows the waveform of a list template, and the level of the other quantity.</summary>
    public struct ListTemplateObject
    {
        /// <summary>Of these values.</summary>
        public ListTemplateObject(ListObject @object, double level)
        {
            Object = @object;
            Level = level;
        }

        /// <summary>What follows the waveform.</summary>
        public ListObject Object { get; }

        /// <summary>The other's level, in amperes or volts.</summary>
        public double Level { get; }
    }

    /// <summary>An output on or off for a time.</summary>
    public struct DelayGroup
    {
        /// <summary>Of these values.</summary>
        public DelayGroup(bool on, double seconds)
        {
            On = on;
            Seconds = seconds;
        }

        /// <summary>Whether it is on.</summary>
        public bool On { get; }

        /// <summary>The time.</summary>
        public double Seconds { get; }
    }
}
