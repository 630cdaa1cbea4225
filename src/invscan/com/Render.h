#pragma once
// Conversions into the value-block forms, and the diagnostic text printers.
#include <cstdint>
#include <cstdio>

#include "invscan/com/Catalogue.h"
#include "invscan/com/KorTypes.h"

unsigned long SizeAsKorString(const char* text);
unsigned long SizeAsKorWideString(const wchar_t* text);
unsigned long SizeofKorString(const KorString* korString);
// Converts `source` (current multibyte encoding) into `destination`, which has
// `room` bytes. `*previousOffset` gets the old `*offset`; `*offset` grows by
// the Kor string's size, which is returned. Either offset may be null.
unsigned long StringToKorString(const char* source, KorString* destination, unsigned long room,
                                unsigned long* offset, unsigned long* previousOffset);
// 26 characters of local time, no terminator; destination[0] = 0 on failure.
void TimeToKorDateTime(long secondsSinceEpoch, char* destination);
// A new, escaped copy the caller deletes with delete[]; an empty text is
// returned as it is.
wchar_t* dmtf_escape(wchar_t* text);
const char* getKorAttribTypeAsString(unsigned long type);

void PrintKorAttribValue(const unsigned char* block);
void PrintKorAttribValueToFile(FILE* stream, const unsigned char* block);
void PrintKorFloat(FILE* stream, double value);
void PrintKorStringToFile(FILE* stream, const KorString* korString);
void PrintOctetStringToFile(FILE* stream, const unsigned char* bytes, unsigned long length);
void PrintKorTimeBlockToFile(FILE* stream, const char* chars);
void PrintKorEnumToFile(FILE* stream, const korAttribDef* attribDef);
