#pragma once

#include <cstdint>
#include <cstdio>
#include <span>

/// Reads the RBI header that stands in front of every firmware image: which part the file is for, its version, and
/// where the payload begins. docs/rbi-container.md draws the bytes.
///
///     char partId[5];
///     std::uint32_t version;
///     if (ReadRbiHeader("BLMX0202.rbi", partId, version)) ...  // "BLMX", 0x1161
///
/// Nothing here keeps a buffer, and no byte outside a given buffer is read. The accessors of the second half share one
/// remembered header length in the process, which governs every buffer that is given to them afterwards.

/// Reads part id and version of the file `fileName`. `partIdOut` is always terminated.
///
/// False, with "NONE" and 0, and one line on standard error, when the file cannot be opened or does not begin with the
/// magic bytes. A short file is not a failure: what is missing reads as zero bytes. Neither the revision tag nor the
/// header length is looked at, and a version field that is no number gives 0.
bool ReadRbiHeader(const char* fileName, char (&partIdOut)[5], std::uint32_t& versionOut);

/// Reads the header length from an open container, whatever its magic, and leaves the position behind it.
///
/// False, with `headerLengthBytes` untouched, when the file ends before offset 12 or cannot be sought or read.
bool ReadRbiHeaderLength(std::FILE* file, std::uint32_t& headerLengthBytes);

/// True when `buffer` begins with the eight magic bytes.
bool IsRbi(std::span<const std::uint8_t> buffer);

/// Remembers the header length of `buffer`. False, with the remembered length as it was, when the magic does not match
/// or the buffer ends before offset 12.
bool ParseRbiHeader(std::span<const std::uint8_t> buffer);

/// Sets the remembered header length to 0.
void ResetRbiHeader();

/// The remembered header length in bytes, 0 at start.
std::uint32_t GetRbiHeaderLength();

/// The first payload byte: `buffer` plus the remembered length, at most the buffer's end. `sizeBytes`, which may be
/// null, is the size of the container going in and of the payload coming out: 0 when the header is as long as the
/// container or longer, and never more than what `buffer` holds from the result on. Without the magic, the buffer's own
/// start, and the size stays as it is.
const std::uint8_t* GetRbiPayload(std::span<const std::uint8_t> buffer, std::uint32_t* sizeBytes);

/// Copies the four version digits at offset 13 without their leading zeros, none at all for "0000", and no terminator:
/// a caller clears `revisionOut` first.
///
/// 0 on success, and also, with nothing written, when the magic does not match. -1, with nothing written, when the
/// remembered length is below 13, the byte at offset 12 is not "R", or the buffer ends inside the digits.
int GetRbiRevision(std::span<const std::uint8_t> buffer, std::span<char, 4> revisionOut);

/// Copies the text behind the first "S:" up to its ";", at most 19 characters, and no terminator: a caller clears
/// `textOut` first.
///
/// 0 on success. -1, with nothing written, when the magic does not match, or tag, text and ";" do not all stand inside
/// the remembered length, or the text is longer than 19 characters.
int GetRbiStringField(std::span<const std::uint8_t> buffer, std::span<char, 19> textOut);

/// Reads the two decimal numbers behind the first "M:", each of two characters, with any one character between them.
/// Characters that are no number count as 0.
///
/// The result is -1 always, on success too: a caller looks at the numbers. Both stay as they were when the magic does
/// not match, or the tag and the five characters behind it do not all stand inside the remembered length.
int GetRbiNumberField(std::span<const std::uint8_t> buffer, std::int32_t& firstOut, std::int32_t& secondOut);
