using System;

namespace Kvx2800t
{
    /// <summary>A questionable register of a channel; the last two are protections that have tripped.</summary>
    [Flags]
    public enum Questionable
    {
        /// <summary>The output holds its current.</summary>
        ConstantCurrent = 1,

        /// <summary>The output holds its voltage.</summary>
        ConstantVoltage = 2,

        /// <summary>The over-voltage protection has tripped.</summary>
        OverVoltage = 4,

        /// <summary>The over-current protection has tripped.</summary>
        OverCurrent = 8,
    }

    /// <summary>What a channel is doing, from its registers.</summary>
    public sealed class ChannelState : Selection
    {
        internal ChannelState(Session session, string name)
            : base(session, name)
        {
        }

        /// <summary>What the output holds.</summary>
        public Regulation Regulation => (Regulation)Session.QueryRegulationState(Name);

        /// <summary>What is the case now.</summary>
        public Questionable Condition => (Questionable)Session.QueryQuestionableCondition(Name);

        /// <summary>What has been the case since this was read last.</summary>
        public Questionable ReadEvent()
        {
            return (Questionable)Session.QueryQuestionableEvent(Name);
        }

        /// <summary>Whether the output is in a state.</summary>
        public bool IsIn(OutputState state)
        {
            return Session.QueryOutputState(Name, (int)state);
        }
    }
}
