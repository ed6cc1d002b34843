// What the library reads of the Chip SDK's information on a unit.
#pragma once

namespace sai {

/// The port through which the switch's own processor is attached.
int cpu_port(int unit);

}  // namespace sai
