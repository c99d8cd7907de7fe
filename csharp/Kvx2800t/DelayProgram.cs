using System.Linq;

namespace Kvx2800t
{
    /// <summary>Groups of times that the output is on or off; they count from 1.</summary>
    public sealed class DelayProgram : Selection
    {
        internal DelayProgram(Session session, string name)
            : base(session, name)
        {
        }

        /// <summary>Whether it runs.</summary>
        public bool Enabled
        {
            get => Session.QueryDelayEnabled(Name);
            set => Session.ConfigureDelayEnabled(Name, value);
        }

        /// <summary>How often it runs; 0: without end.</summary>
        public int Cycles
        {
            get => Session.QueryDelayCycles(Name);
            set => Session.ConfigureDelayCycles(Name, value);
        }

        /// <summary>What the output does once it has run.</summary>
        public DelayEnd EndState
        {
            get => (DelayEnd)Session.QueryDelayEndState(Name);
            set => Session.ConfigureDelayEndState(Name, (int)value);
        }

        /// <summary>How many groups it has.</summary>
        public int GroupCount => Session.QueryDelayGroupCount(Name);

        /// <summary>How far it has come: group 0 when it is stopped, remaining cycles 0 when it has no end, too.</summary>
        public (DelayState State, double RemainingSeconds, int Group, int RemainingCycles) QueryStatus()
        {
            var (state, remainingSeconds, group, remainingCycles) = Session.QueryDelayStatus(Name);
            return ((DelayState)state, remainingSeconds, group, remainingCycles);
        }

        /// <summary>Replaces all groups.</summary>
        public void Load(params DelayGroup[] groups)
        {
            Session.LoadDelay(Name, groups.Select(group => group.On).ToArray(),
                              groups.Select(group => group.Seconds).ToArray());
        }

        /// <summary>Starts it at once.</summary>
        public void Start()
        {
            Enabled = true;
        }

        /// <summary>Applies the end state.</summary>
        public void Stop()
        {
            Enabled = false;
        }

        /// <summary>Reads a group.</summary>
        public DelayGroup GetGroup(int number)
        {
            var (on, seconds) = Session.QueryDelayGroup(Name, number);
            return new DelayGroup(on, seconds);
        }

        /// <summary>Sets a group; one more than there are groups appends.</summary>
        public void SetGroup(int number, DelayGroup group)
        {
            Session.ConfigureDelayGroup(Name, number, group.On, group.Seconds);
        }

        /// <summary>Inserts a group, which gets this number.</summary>
        public void InsertGroup(int number)
        {
            Session.InsertDelayGroup(Name, number);
        }

        /// <summary>Deletes a group.</summary>
        public void DeleteGroup(int number)
        {
            Session.DeleteDelayGroup(Name, number);
        }

        /// <summary>Deletes all groups.</summary>
        public void Clear()
        {
            Session.ClearDelayGroups(Name);
        }
    }

    /// <summary>Times that the groups of a delay program are made from.</summary>
    public sealed class DelayGenerator : Selection
    {
        internal DelayGenerator(Session session, string name)
            : base(session, name)
        {
        }

        /// <summary>How the times change.</summary>
        public DelayTimes Times
        {
            get => (DelayTimes)Session.QueryDelayGenerateMode(Name);
            set => Session.ConfigureDelayGenerateMode(Name, (int)value);
        }

        /// <summary>What the groups begin with.</summary>
        public DelayPattern Pattern
        {
            get => (DelayPattern)Session.QueryDelayGeneratePattern(Name);
            set => Session.ConfigureDelayGeneratePattern(Name, (int)value);
        }

        /// <summary>How many groups it gives.</summary>
        public int Points
        {
            get => Session.QueryDelayGeneratePoints(Name);
            set => Session.ConfigureDelayGeneratePoints(Name, value);
        }

        /// <summary>The time of groups that are on, where times are fixed, in seconds.</summary>
        public double OnTime
        {
            get => Session.QueryDelayOnTime(Name);
            set => Session.ConfigureDelayOnTime(Name, value);
        }

        /// <summary>The time of groups that are off, where times are fixed, in seconds.</summary>
        public double OffTime
        {
            get => Session.QueryDelayOffTime(Name);
            set => Session.ConfigureDelayOffTime(Name, value);
        }

        /// <summary>The time of the first group, where times change, in seconds.</summary>
        public double BaseTime
        {
            get => Session.QueryDelayBaseTime(Name);
            set => Session.ConfigureDelayBaseTime(Name, value);
        }

        /// <summary>The change from group to group, where times change, in seconds.</summary>
        public double TimeStep
        {
            get => Session.QueryDelayTimeStep(Name);
            set => Session.ConfigureDelayTimeStep(Name, value);
        }

        /// <summary>Makes them the delay program from a group on.</summary>
        public void Construct(int group = 1)
        {
            Session.ConstructDelay(Name, group);
        }
    }
}
