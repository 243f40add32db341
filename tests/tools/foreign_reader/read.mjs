// Reads a recording with libraries that are not ours, by its index, and prints what a viewer would show, as JSON:
// metadata, and the messages of each topic decoded by the definition in the file.
import {parse} from '@foxglove/rosmsg';
import {MessageReader} from '@foxglove/rosmsg2-serialization';
import {McapIndexedReader} from '@mcap/core';
import {open} from 'node:fs/promises';

const file = await open(process.argv[2]);
const reader = await McapIndexedReader.Initialize({
    readable: {
        size: async () => BigInt((await file.stat()).size),
        read: async (offset, length) => {
            const bytes = new Uint8Array(Number(length));
            await file.read(bytes, 0, bytes.length, Number(offset));
            return bytes;
        },
    },
});
const decoders = new Map();
const topics = {};
for await (const message of reader.readMessages()) {
    const channel = reader.channelsById.get(message.channelId);
    const schema = reader.schemasById.get(channel.schemaId);
    if (!decoders.has(channel.id)) {
        decoders.set(channel.id, new MessageReader(parse(new TextDecoder().decode(schema.data), {ros2: true})));
        topics[channel.topic] = {type: schema.name, messages: []};
    }
    topics[channel.topic].messages.push(decoders.get(channel.id).readMessage(message.data));
}
const metadata = [];
for await (const one of reader.readMetadata()) metadata.push(Object.fromEntries(one.metadata));
const count = Number(reader.statistics.messageCount);
const plain = (_, value) => typeof value === 'bigint' ? Number(value)
    : ArrayBuffer.isView(value) ? Array.from(value) : value;
console.log(JSON.stringify({metadata, count, topics}, plain));
