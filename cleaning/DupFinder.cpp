#include "cleaning/DupFinder.h"

#include "cleaning/DupSearch.h"

namespace velto {

DupFinder::Result DupFinder::find(const std::vector<FileRecord>& files,
                                  const std::function<bool()>& stopped) const {
    return DupSearch(files, clock_, contents_, threads_, stopped).run();
}

}  // namespace velto
