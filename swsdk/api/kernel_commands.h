// The commands that the host's kernel module was sent; swsdk/kernel_commands.h is the interface to them.
#pragma once

namespace api {

void forget_kernel_commands();

}  // namespace api
