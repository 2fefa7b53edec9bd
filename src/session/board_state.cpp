// The board's view of the open style (declared with the edits in session/edits.h).

#include "session/edits.h"

#include "session/style_session.h"

#include <algorithm>

namespace torquil {

bool selectOnBoard(StyleSession& session, int page, int sib) {
    if (page < 0 || page >= kMaxPages || sib < 1 || sib > session.sprites.pageCount(page)) {
        session.selection.clear();
        return false;
    }
    session.selection.page = page;
    session.selection.sib = sib;
    return true;
}

void clearSelection(StyleSession& session) {
    session.selection.clear();
}

void showBoardPage(StyleSession& session, int page) {
    session.pages.gBoardOffset =
        static_cast<std::int16_t>(std::clamp(page, 0, kMaxPages - 1) * kPageSize);
}

} // namespace torquil
