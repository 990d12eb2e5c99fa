// The thread requests read once from the environment, shared by the probe and its queries.
#pragma once

#include "zel/serv.h"

namespace zel::serv {

// Fills the settings record from the environment; the topology probe runs it once, under its lock.
void scan_environment();

// The record as the scan left it (every field -1 before the scan).
const zel_thread_settings &recorded_thread_settings();

} // namespace zel::serv
