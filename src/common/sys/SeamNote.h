#pragma once
// The seam sits below the framework and cannot trace; where it chooses a
// source for a fact (the Linux host id), it says so here, and the scanner's
// tracing, installed at load, writes the line. Without a sink nothing is said.
namespace sys {

using NoteSink = void (*)(const char* text);
void setNoteSink(NoteSink sink);
void note(const char* text);

}  // namespace sys
