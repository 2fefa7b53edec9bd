#include "session/style_session.h"

namespace torquil {

const SpriteRec* StyleSession::selectedSprite() const {
    if (!selection.any() || selection.page >= kMaxPages) return nullptr;
    const auto& list = sprites.pageSprites[static_cast<std::size_t>(selection.page)];
    if (selection.sib < 1 || selection.sib >= static_cast<int>(list.size())) return nullptr;
    return &list[static_cast<std::size_t>(selection.sib)];
}

SpriteRec* StyleSession::selectedSprite() {
    return const_cast<SpriteRec*>(static_cast<const StyleSession*>(this)->selectedSprite());
}

} // namespace torquil
