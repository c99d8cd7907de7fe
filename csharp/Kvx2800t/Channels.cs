using System;
using System.Collections;
using System.Collections.Generic;
using System.Linq;

namespace Kvx2800t
{
    /// <summary>The channels of a supply, by their physical or virtual names, one or several.</summary>
    public sealed class Channels : IReadOnlyCollection<Channel>
    {
        private readonly Session session;

        internal Channels(Session session)
        {
            this.session = session;
        }

        /// <summary>How many there are.</summary>
        public int Count => session.GetAttributeViInt32("", AttributeId.ChannelCount);

        /// <summary>Channels by name. What the names are of shows when they are used: the driver knows them.</summary>
        public Channel this[params string[] names]
        {
            get
            {
                if (names.Length == 0 || names.Any(string.IsNullOrEmpty))
                {
                    throw new ArgumentException("channels have names, such as \"CH1\" or \"OutputChannel1\"");
                }
                return new Channel(session, string.Join(",", names));
            }
        }

        /// <summary>Refused: a number would count from 1 here and from 0 elsewhere.</summary>
        [Obsolete("channels have names, such as \"CH1\" or \"OutputChannel1\": a number is none", true)]
        public Channel this[int number] => throw new NotSupportedException();

        /// <summary>The channels from one number to another, as the driver's ranges have them: both are in it.</summary>
        public Channel Range(int first, int last)
        {
            if (first < 1 || last < first)
            {
                throw new ArgumentException($"{first} to {last} is no range of channels: they count from 1, " +
                                            "and the lower one comes first");
            }
            return this[$"CH{first}-{last}"];
        }

        /// <summary>Each of them.</summary>
        public IEnumerator<Channel> GetEnumerator()
        {
            return Enumerable.Range(1, Count).Select(index => this[session.GetChannelName(index)]).GetEnumerator();
        }

        IEnumerator IEnumerable.GetEnumerator()
        {
            return GetEnumerator();
        }
    }
}
