using System.Linq;

namespace Kvx2800t
{
    /// <summary>Groups of levels that the output takes one after the other; they count from 1.</summary>
    public sealed class ListProgram : Selection
    {
        internal ListProgram(Session session, string name)
            : base(session, name)
        {
        }

        /// <summary>Whether it is on; it runs once the output is on, too.</summary>
        public bool Enabled
        {
            get => Session.QueryListEnabled(Name);
            set => Session.ConfigureListEnabled(Name, value);
        }

        /// <summary>How often it runs; 0: without end.</summary>
        public int Cycles
        {
            get => Session.QueryListCycles(Name);
            set => Session.ConfigureListCycles(Name, value);
        }

        /// <summary>What the output does once it has run.</summary>
        public ListEnd EndState
        {
            get => (ListEnd)Session.QueryListEndState(Name);
            set => Session.ConfigureListEndState(Name, (int)value);
        }

        /// <summary>How many groups it has.</summary>
        public int GroupCount => Session.QueryListGroupCount(Name);

        /// <summary>How far it has come: group 0 when it is stopped, remaining cycles 0 when it has no end, too.</summary>
        public (ListState State, double RemainingSeconds, int Group, int RemainingCycles) QueryStatus()
        {
            var (state, remainingSeconds, group, remainingCycles) = Session.QueryListStatus(Name);
            return ((ListState)state, remainingSeconds, group, remainingCycles);
        }

        /// <summary>Replaces all groups.</summary>
        public void Load(params ListGroup[] groups)
        {
            Session.LoadList(Name, groups.Select(group => group.Volts).ToArray(),
                             groups.Select(group => group.Amperes).ToArray(),
                             groups.Select(group => group.Seconds).ToArray());
        }

        /// <summary>Switches the list and the output on, also to let a paused list go on.</summary>
        public void Run()
        {
            Session.RunList(Name);
        }

        /// <summary>Switches the output off.</summary>
        public void Pause()
        {
            Session.PauseList(Name);
        }

        /// <summary>Applies the end state.</summary>
        public void Stop()
        {
            Enabled = false;
        }

        /// <summary>Reads a group.</summary>
        public ListGroup GetGroup(int number)
        {
            var (volts, amperes, seconds) = Session.QueryListGroup(Name, number);
            return new ListGroup(volts, amperes, seconds);
        }

        /// <summary>Sets a group; one more than there are groups appends.</summary>
        public void SetGroup(int number, ListGroup group)
        {
            Session.ConfigureListGroup(Name, number, group.Volts, group.Amperes, group.Seconds);
        }

        /// <summary>Inserts a group, which gets this number.</summary>
        public void InsertGroup(int number)
        {
            Session.InsertListGroup(Name, number);
        }

        /// <summary>Deletes a group.</summary>
        public void DeleteGroup(int number)
        {
            Session.DeleteListGroup(Name, number);
        }

        /// <summary>Deletes all groups.</summary>
        public void Clear()
        {
            Session.ClearListGroups(Name);
        }
    }

    /// <summary>A waveform that the groups of a list are made from.</summary>
    public sealed class ListTemplate : Selection
    {
        internal ListTemplate(Session session, string name)
            : base(session, name)
        {
        }

        /// <summary>The waveform.</summary>
        public Waveform Waveform
        {
            get => (Waveform)Session.QueryListTemplateWaveform(Name);
            set => Session.ConfigureListTemplateWaveform(Name, (int)value);
        }

        /// <summary>The highest level, in volts or amperes.</summary>
        public double Maximum
        {
            get => Session.QueryListTemplateMaximum(Name);
            set => Session.ConfigureListTemplateMaximum(Name, value);
        }

        /// <summary>The lowest level, in volts or amperes.</summary>
        public double Minimum
        {
            get => Session.QueryListTemplateMinimum(Name);
            set => Session.ConfigureListTemplateMinimum(Name, value);
        }

        /// <summary>The period, in seconds.</summary>
        public double Period
        {
            get => Session.QueryListTemplatePeriod(Name);
            set => Session.ConfigureListTemplatePeriod(Name, value);
        }

        /// <summary>The time of one group, in seconds.</summary>
        public double Interval
        {
            get => Session.QueryListTemplateInterval(Name);
            set => Session.ConfigureListTemplateInterval(Name, value);
        }

        /// <summary>The cycles that the list gets; 0: without end.</summary>
        public int Cycles
        {
            get => Session.QueryListTemplateCycles(Name);
            set => Session.ConfigureListTemplateCycles(Name, value);
        }

        /// <summary>Whether the waveform is upside down.</summary>
        public bool Inverted
        {
            get => Session.QueryListTemplateInverted(Name);
            set => Session.ConfigureListTemplateInverted(Name, value);
        }

        /// <summary>The width of a pulse, in seconds.</summary>
        public double PulseWidth
        {
            get => Session.QueryListTemplatePulseWidth(Name);
            set => Session.ConfigureListTemplatePulseWidth(Name, value);
        }

        /// <summary>The number of pulses.</summary>
        public int PulseCount
        {
            get => Session.QueryListTemplatePulseCount(Name);
            set => Session.ConfigureListTemplatePulseCount(Name, value);
        }

        /// <summary>The rising part of a ramp, in percent.</summary>
        public int Symmetry
        {
            get => Session.QueryListTemplateSymmetry(Name);
            set => Session.ConfigureListTemplateSymmetry(Name, value);
        }

        /// <summary>The point of the waveform that becomes the first group.</summary>
        public int Start
        {
            get => Session.QueryListTemplateStart(Name);
            set => Session.ConfigureListTemplateStart(Name, value);
        }

        /// <summary>EXPP of the exponential waveforms.</summary>
        public int Expp
        {
            get => Session.QueryListTemplateExpp(Name);
            set => Session.ConfigureListTemplateExpp(Name, value);
        }

        /// <summary>EXPR of the exponential waveforms.</summary>
        public int Expr
        {
            get => Session.QueryListTemplateExpr(Name);
            set => Session.ConfigureListTemplateExpr(Name, value);
        }

        /// <summary>How many groups it gives.</summary>
        public int Points => Session.QueryListTemplatePoints(Name);

        /// <summary>What follows the waveform, and the level of the other quantity: amperes or volts.</summary>
        public ListTemplateObject Object
        {
            get
            {
                var (what, level) = Session.QueryListTemplateObject(Name);
                return new ListTemplateObject((ListObject)what, level);
            }
            set => Session.ConfigureListTemplateObject(Name, (int)value.Object, value.Level);
        }

        /// <summary>Makes it the list from a group on.</summary>
        public void Construct(int group = 1)
        {
            Session.ConstructList(Name, group);
        }
    }
}
