#pragma once
// Conversions into the value-block forms, and the diagnostic text printers.
#include <cstdint>
#include <cstdio>

#include "invscan/com/Catalogue.h"
#include "invscan/com/Export.h"
#include "invscan/com/KorTypes.h"

INVSCAN_API unsigned long SizeAsKorString(const char* text);
INVSCAN_API unsigned long SizeAsKorWideString(const wchar_t* text);
INVSCAN_API unsigned long SizeofKorString(const KorString* korString);
// Converts `source` (current multibyte encoding) into `destination`, which has
// `room` bytes. `*previousOffset` gets the old `*offset`; `*offset` grows by
// the Kor string's size, which is returned. Either offset may be null.
INVSCAN_API unsigned long StringToKorString(const char* source, KorString* destination, unsigned long room,
                                unsigned long* offset, unsigned long* previousOffset);
// 26 characters of local time, no terminator; destination[0] = 0 on failure.
INVSCAN_API void TimeToKorDateTime(long secondsSinceEpoch, char* destination);
// A new, escaped copy the caller deletes with delete[]; an empty text is
// returned as it is.
INVSCAN_API wchar_t* dmtf_escape(wchar_t* text);
INVSCAN_API const char* getKorAttribTypeAsString(unsigned long type);

INVSCAN_API void PrintKorAttribValue(const unsigned char* block);
INVSCAN_API void PrintKorAttribValueToFile(FILE* stream, const unsigned char* block);
INVSCAN_API void PrintKorFloat(FILE* stream, double value);
INVSCAN_API void PrintKorStringToFile(FILE* stream, const KorString* korString);
INVSCAN_API void PrintOctetStringToFile(FILE* stream, const unsigned char* bytes, unsigned long length);
INVSCAN_API void PrintKorTimeBlockToFile(FILE* stream, const char* chars);
INVSCAN_API void PrintKorEnumToFile(FILE* stream, const korAttribDef* attribDef);
