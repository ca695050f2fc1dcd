// What the look-ups in catalogue and profile files cost beside a job.
// Knows the catalogue and the machine file by their readers.
#pragma once

namespace tarnex::bench {

// A catalogue opened and every text of it asked for once, the machine file and two registry values read: more
// than any job asks for. `job`: seconds of the job that it is set beside.
void printLookUps(double job);

}  // namespace tarnex::bench
