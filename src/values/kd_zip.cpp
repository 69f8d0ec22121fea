// Compression of whole blocks through zlib, and recognition of compressed
// input by trying to expand it.
#include <atomic>
#include <cstring>

#include <zlib.h>

#include "kdbind/values.h"

namespace KdBind {

namespace {

// 1 GiB: far above any document the library is meant for, far below what a
// block of a few kilobytes can claim when it is built to expand without end.
std::atomic<unsigned long> g_maxExpandedSize{1UL << 30};

// zlib counts in uInt; blocks above that are fed in pieces.
constexpr unsigned long kMaxZlibChunk = 1UL << 30;

uInt ChunkOf(unsigned long remaining)
{
    return static_cast<uInt>(remaining < kMaxZlibChunk ? remaining : kMaxZlibChunk);
}

// Ends the deflate or inflate stream on every way out.
struct DeflateGuard {
    z_stream* stream;
    ~DeflateGuard() { deflateEnd(stream); }
};
struct InflateGuard {
    z_stream* stream;
    ~InflateGuard() { inflateEnd(stream); }
};

} // namespace

void CKdZip::SetMaxExpandedSize(unsigned long bytes) { g_maxExpandedSize = bytes; }

unsigned long CKdZip::GetMaxExpandedSize() { return g_maxExpandedSize; }

void CKdZip::Compress(unsigned char** data, unsigned long* size, CompressionType type)
{
    if (type != CompressionType_GZip && type != CompressionType_ZLib)
        return;
    unsigned long const inputSize = *size;
    // The output may never be larger than the input: what does not shrink
    // is refused rather than stored.
    unsigned char* output = new unsigned char[inputSize ? inputSize : 1];
    z_stream stream;
    memset(&stream, 0, sizeof stream);
    int result = type == CompressionType_ZLib
                     ? deflateInit(&stream, Z_BEST_SPEED)
                     : deflateInit2(&stream, Z_BEST_SPEED, Z_DEFLATED, 15 + 16, 8, Z_DEFAULT_STRATEGY);
    if (result != Z_OK) {
        delete[] output;
        throw CKdException(FormatString("Failed to compress data. [Error Code: %d]", result));
    }
    {
        DeflateGuard guard{&stream};
        unsigned long inputLeft = inputSize;
        unsigned long outputLeft = inputSize;
        stream.next_in = *data;
        stream.next_out = output;
        // All input but the last piece goes in without flushing; the last
        // piece goes in with the finish call.
        while (inputLeft > kMaxZlibChunk) {
            stream.avail_in = ChunkOf(inputLeft);
            stream.avail_out = ChunkOf(outputLeft);
            uInt const givenIn = stream.avail_in, givenOut = stream.avail_out;
            deflate(&stream, Z_NO_FLUSH);
            inputLeft -= givenIn - stream.avail_in;
            outputLeft -= givenOut - stream.avail_out;
            if (stream.avail_in != 0)  // the output is full: it does not shrink
                break;
        }
        stream.avail_in = ChunkOf(inputLeft);
        stream.avail_out = ChunkOf(outputLeft);
        deflate(&stream, Z_NO_FLUSH);
        result = deflate(&stream, Z_FINISH);
        if (result == Z_STREAM_END && stream.total_out <= inputSize) {
            delete[] *data;
            *data = output;
            *size = stream.total_out;
            return;
        }
    }
    delete[] output;
    throw CKdException(FormatString("Failed to compress data. [Error Code: %d]", result));
}

void CKdZip::CompressData(CBinaryData& data, CompressionType type)
{
    unsigned long size = data.GetLength();
    if (size == 0)
        return;
    unsigned char* block = data.ReleaseData();
    data = CBinaryData();
    try {
        Compress(&block, &size, type);
    } catch (...) {
        delete[] block;
        throw;
    }
    data = CBinaryData(block, size, true);
}

void CKdZip::Decompress(unsigned char** data, unsigned long* size)
{
    if (!*data || *size == 0)
        return;
    unsigned long const limit = g_maxExpandedSize;
    z_stream stream;
    memset(&stream, 0, sizeof stream);
    // 15 + 32: a 32 KB window, zlib or gzip header detected automatically.
    if (inflateInit2(&stream, 15 + 32) != Z_OK)
        return;
    InflateGuard guard{&stream};

    // Grown by doubling from a 64 KB start, the block that is handed out at
    // the end; no scratch copy in between.
    unsigned long capacity = limit < 0x10000 ? (limit ? limit : 1) : 0x10000;
    unsigned char* output = new unsigned char[capacity];
    unsigned long produced = 0;
    unsigned long inputLeft = *size;
    stream.next_in = *data;
    int result = Z_OK;
    try {
        while (result == Z_OK) {
            if (produced == capacity) {
                if (capacity >= limit)
                    throw CKdException(FormatString(
                        "Failed to decompress data. The expanded data passes the limit of %lu bytes.", limit));
                unsigned long grown = capacity > limit / 2 ? limit : capacity * 2;
                unsigned char* const bigger = new unsigned char[grown];
                memcpy(bigger, output, produced);
                delete[] output;
                output = bigger;
                capacity = grown;
            }
            if (stream.avail_in == 0 && inputLeft != 0) {
                stream.avail_in = ChunkOf(inputLeft);
                inputLeft -= stream.avail_in;
            }
            stream.next_out = output + produced;
            stream.avail_out = ChunkOf(capacity - produced);
            uInt const given = stream.avail_out;
            result = inflate(&stream, Z_NO_FLUSH);
            produced += given - stream.avail_out;
            // No progress with input left over means input that ended early.
            if (result == Z_BUF_ERROR)
                break;
        }
    } catch (...) {
        delete[] output;
        throw;
    }
    if (result != Z_STREAM_END) {
        delete[] output;
        return;
    }
    delete[] *data;
    *data = output;
    *size = produced;
}

} // namespace KdBind
