// The shell's commands about frames.
#pragma once

#include "words.h"

namespace saish {

class Session;

void send(Session& session, const Words& arguments);
void trace(Session& session, const Words& arguments);
void capture(Session& session, const Words& arguments);
void watch(Session& session, const Words& arguments);
void path(Session& session, const Words& arguments);

}  // namespace saish
