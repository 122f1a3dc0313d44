#include "cleaning/DupFinder.h"

#include "cleaning/DupSearch.h"

namespace velto {

DupFinder::Result DupFinder::find(const std::vector<FileRecord>& files,
                                  const std::function<bool()>& stopped, Budget budget,
                                  const Progress& progress) const {
    return DupSearch(files, clock_, contents_, threads_, known_, stopped, budget, progress).run();
}

}  // namespace velto
