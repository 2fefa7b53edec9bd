#include "platform/platform.h"

namespace torquil {

Answer safeAnswer(Buttons buttons) {
    switch (buttons) {
    case Buttons::Ok:
        return Answer::Ok;
    case Buttons::OkCancel:
        return Answer::Cancel;
    case Buttons::YesNo:
        return Answer::No;
    case Buttons::YesNoCancel:
        return Answer::Cancel;
    }
    return Answer::Ok;
}

bool answerOffered(Buttons buttons, Answer answer) {
    switch (buttons) {
    case Buttons::Ok:
        return answer == Answer::Ok;
    case Buttons::OkCancel:
        return answer == Answer::Ok || answer == Answer::Cancel;
    case Buttons::YesNo:
        return answer == Answer::Yes || answer == Answer::No;
    case Buttons::YesNoCancel:
        return answer == Answer::Yes || answer == Answer::No || answer == Answer::Cancel;
    }
    return false;
}

} // namespace torquil
