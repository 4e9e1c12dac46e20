#include "kit/support/merge-run.h"
#include "kit/support/options.h"
#include "kit/words/word-list.h"

namespace zel::kit {

int run_merge(const word &self, int argc, char **argv)
{
    merge_job job;
    bool ours = false;
    bool theirs = false;
    const parsed line = parse(
        self, argc, argv,
        {{.name = "output",
          .argument = "FILE",
          .help = "where the result goes; without it it replaces OURS",
          .text = &job.output,
          .letter = 'o'},
         {.name = "ours", .help = "conflicts go to OURS", .on = &ours},
         {.name = "theirs", .help = "conflicts go to THEIRS", .on = &theirs},
         {.name = "dry-run", .help = "only say what is in conflict", .on = &job.dry_run},
         {.name = "driver",
          .argument = "PATH",
          .help = "for version control: the three files are copies of that one; OURS is replaced "
                  "without a backup",
          .text = &job.driver}},
        3, 3);
    if (line.ends)
        return line.status;
    if (ours && theirs)
        return wrong_use(self, "--ours and --theirs exclude each other");
    job.base = line.files[0];
    job.ours = line.files[1];
    job.theirs = line.files[2];
    job.prefer = ours ? side::ours : theirs ? side::theirs : side::neither;
    return merge_files(job);
}

} // namespace zel::kit
