// The debug channel: single lines for whoever is debugging, never for the user, and nothing depends on them.
#pragma once

#include <string_view>

// Receives one message as it was sent, line break included. Called on the thread that sent it.
using MDebugSink = void (*)(std::u16string_view message);

// Sends a message to the sink; without one the message is dropped. Allocates nothing itself, so that it can
// report exhausted memory.
void DebugOutput(std::u16string_view message);

// Sends the channel to the standard error stream if the environment variable LETTRINO_DEBUG is set and not
// empty.
void DebugToStandardError();

// Puts a sink in place (null: none) and returns the one before it.
MDebugSink SetDebugSink(MDebugSink sink);
