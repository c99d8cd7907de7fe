using System;
using System.Text;

namespace Kvx2800t
{
    /// <summary>The standard event status register.</summary>
    [Flags]
    public enum EventStatus
    {
        /// <summary>A response was asked for and not there, or lost.</summary>
        QueryError = 4,

        /// <summary>The instrument has a fault.</summary>
        DeviceError = 8,

        /// <summary>A command could not be executed.</summary>
        ExecutionError = 16,

        /// <summary>A command was not understood.</summary>
        CommandError = 32,
    }

    /// <summary>
    /// A session with an instrument. Any thread may use it: the driver lets one call in at a time. Disposing of it
    /// closes it; where that is forgotten, it is closed once nothing refers to it.
    /// </summary>
    public sealed class Supply : IDisposable
    {
        private readonly Session session;

        /// <summary>Opens a VISA resource descriptor or a logical name of the configuration store.</summary>
        /// <param name="resource">Either of them; empty for a simulated instrument.</param>
        /// <param name="options">The options; without them those of a new Options.</param>
        /// <param name="idQuery">Whether to fail unless the driver supports the instrument's model.</param>
        /// <param name="reset">Whether to reset the instrument.</param>
        /// <param name="library">The driver's library; without it the one that is installed.</param>
        public Supply(string resource, Options options = null, bool idQuery = false, bool reset = false,
                      Library library = null)
        {
            Library = library ?? new Library();
            session = new Session(Library, resource, idQuery, reset, (options ?? new Options()).ToString());
        }

        /// <summary>The driver's library.</summary>
        public Library Library { get; }

        /// <summary>Its channels, by their names.</summary>
        public Channels Channels => new Channels(session);

        /// <summary>How outputs 1 and 2 are combined.</summary>
        public SourceMode SourceMode
        {
            get => (SourceMode)session.QuerySourceMode();
            set => session.ConfigureSourceMode((int)value);
        }

        /// <summary>Whether the bleeder discharges the outputs.</summary>
        public bool Bleeder
        {
            get => session.QueryBleeder();
            set => session.ConfigureBleeder(value);
        }

        /// <summary>What messages of the program's own about lists and delays act on, its number.</summary>
        public int SelectedChannel => session.QuerySelectedChannel();

        /// <summary>Milliseconds that a read or a write waits.</summary>
        public int IoTimeout
        {
            get => session.GetIoTimeout();
            set => session.SetIoTimeout(value);
        }

        /// <summary>Closes the session, once no call is under way.</summary>
        public void Dispose()
        {
            session.Dispose();
        }

        /// <summary>
        /// Keeps the session to the calling thread until what is returned is disposed of, by that thread.
        /// </summary>
        public IDisposable Lock()
        {
            return new HeldLock(session);
        }

        /// <summary>Selects what messages of the program's own about lists and delays act on.</summary>
        public void SelectChannel(string channel)
        {
            session.SelectChannel(channel);
        }

        /// <summary>Clears the event registers and the error queue.</summary>
        public void ClearStatus()
        {
            session.ClearStatus();
        }

        /// <summary>Reads the standard event status register, and clears it.</summary>
        public EventStatus ReadEventStatus()
        {
            return (EventStatus)session.QueryEventStatus();
        }

        /// <summary>What the meters of all these channels read, in their order.</summary>
        public Reading[] MeasureAll(string channels)
        {
            return session.MeasureAll(channels, Channels.Count);
        }

        /// <summary>The level that is set, in volts or amperes; with the profile, what the meters read.</summary>
        public double Measure(string channel, MeasurementType measurement)
        {
            return session.Measure(channel, (int)measurement);
        }

        /// <summary>Switches outputs on or off.</summary>
        public void ConfigureOutputEnabled(string channels, bool enabled)
        {
            session.ConfigureOutputEnabled(channels, enabled);
        }

        /// <summary>Sets the voltage of several channels.</summary>
        public void ConfigureVoltageLevel(string channels, double volts)
        {
            session.ConfigureVoltageLevel(channels, volts);
        }

        /// <summary>Sends a message of the program's own; its line feed is added.</summary>
        public void Write(string message)
        {
            session.viWrite(Text.Bytes(message));
        }

        /// <summary>Reads one response, with its line feed. One of more bytes is an error.</summary>
        public byte[] ReadResponse(int largest = 65536)
        {
            return session.viRead(largest);
        }

        /// <summary>Sends a message and reads its response, without the line feed.</summary>
        public string Query(string message)
        {
            using (Lock())
            {
                Write(message);
                return Encoding.UTF8.GetString(ReadResponse()).TrimEnd('\r', '\n');
            }
        }

        /// <summary>
        /// The oldest message that is remembered (Options.MessageLog), which is forgotten then; empty when none is.
        /// </summary>
        public string GetNextMessageRecord()
        {
            return session.GetNextMessageRecord();
        }

        /// <summary>The driver records none: always an empty text.</summary>
        public string GetNextCoercionRecord()
        {
            return session.GetNextCoercionRecord();
        }

        /// <summary>The driver records none: always an empty text.</summary>
        public string GetNextInterchangeWarning()
        {
            return session.GetNextInterchangeWarning();
        }

        /// <summary>Forgets what interchangeability is checked against.</summary>
        public void ResetInterchangeCheck()
        {
            session.ResetInterchangeCheck();
        }

        /// <summary>Forgets the interchangeability warnings.</summary>
        public void ClearInterchangeWarnings()
        {
            session.ClearInterchangeWarnings();
        }

        /// <summary>Reads and clears the recorded error. One that was thrown has been read already.</summary>
        public (int Code, string Text) GetError()
        {
            return session.GetError();
        }

        /// <summary>Clears the recorded error.</summary>
        public void ClearError()
        {
            session.ClearError();
        }

        /// <summary>The driver's message for a status code; an error for a code that is not its own.</summary>
        public string ErrorMessage(int code)
        {
            return session.error_message(code);
        }

        /// <summary>Takes one entry from the instrument's error queue; code 0 when it is empty.</summary>
        public (int Code, string Message) ErrorQuery()
        {
            return session.error_query();
        }

        /// <summary>Puts the instrument into its default state.</summary>
        public void Reset()
        {
            session.reset();
        }

        /// <summary>The same as Reset.</summary>
        public void ResetWithDefaults()
        {
            session.ResetWithDefaults();
        }

        /// <summary>Switches all outputs off.</summary>
        public void Disable()
        {
            session.Disable();
        }

        /// <summary>Null when the instrument has no self test.</summary>
        public (int Code, string Message)? SelfTest()
        {
            return session.self_test();
        }

        /// <summary>The revisions of the driver and of the instrument's firmware.</summary>
        public (string Driver, string Instrument) RevisionQuery()
        {
            return session.revision_query();
        }

        /// <summary>Forgets cached attribute values.</summary>
        public void InvalidateAllAttributes()
        {
            session.InvalidateAllAttributes();
        }

        /// <summary>Reads a ViInt32 attribute.</summary>
        public int GetInt32(AttributeId attribute, string channel = "")
        {
            return session.GetAttributeViInt32(channel, attribute);
        }

        /// <summary>Reads a ViReal64 attribute.</summary>
        public double GetReal64(AttributeId attribute, string channel = "")
        {
            return session.GetAttributeViReal64(channel, attribute);
        }

        /// <summary>Reads a ViBoolean attribute.</summary>
        public bool GetBoolean(AttributeId attribute, string channel = "")
        {
            return session.GetAttributeViBoolean(channel, attribute);
        }

        /// <summary>Reads a ViSession attribute; the driver has none.</summary>
        public uint GetSession(AttributeId attribute, string channel = "")
        {
            return session.GetAttributeViSession(channel, attribute);
        }

        /// <summary>Reads a ViString attribute, of any length.</summary>
        public string GetString(AttributeId attribute, string channel = "")
        {
            return session.GetAttributeViString(channel, attribute);
        }

        /// <summary>Sets a ViInt32 attribute.</summary>
        public void SetInt32(AttributeId attribute, int value, string channels = "")
        {
            session.SetAttributeViInt32(channels, attribute, value);
        }

        /// <summary>Sets a ViReal64 attribute.</summary>
        public void SetReal64(AttributeId attribute, double value, string channels = "")
        {
            session.SetAttributeViReal64(channels, attribute, value);
        }

        /// <summary>Sets a ViBoolean attribute.</summary>
        public void SetBoolean(AttributeId attribute, bool value, string channels = "")
        {
            session.SetAttributeViBoolean(channels, attribute, value);
        }

        /// <summary>Sets a ViSession attribute; the driver has none.</summary>
        public void SetSession(AttributeId attribute, uint value, string channels = "")
        {
            session.SetAttributeViSession(channels, attribute, value);
        }

        /// <summary>Sets a ViString attribute; the driver's are all read-only.</summary>
        public void SetString(AttributeId attribute, string value, string channels = "")
        {
            session.SetAttributeViString(channels, attribute, value);
        }

        private sealed class HeldLock : IDisposable
        {
            private Session locked;

            internal HeldLock(Session session)
            {
                session.LockSession();
                locked = session;
            }

            public void Dispose()
            {
                locked?.UnlockSession();
                locked = null;
            }
        }
    }
}
