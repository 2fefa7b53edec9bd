// torquil-cli car-set: change fields of one car record (and its name) with the editor's limits,
// then save through the editor's save sequence.

#include "cli/cli.h"

#include "cars/car_listing.h"
#include "cars/car_name_rules.h"
#include "cars/car_names_io.h"
#include "cars/car_record.h"
#include "session/save_sequence.h"

#include <ostream>

namespace torquil::cli {

namespace {

struct Assignment {
    std::string field;
    std::string text;
    FieldAddress address;
};

// FIELD=VALUE words into addressed boxes; an unknown field is a usage error.
bool parseAssignments(const std::vector<std::string>& words, std::vector<Assignment>& out,
                      std::ostream& err) {
    for (const std::string& word : words) {
        const std::size_t eq = word.find('=');
        if (eq == std::string::npos || eq == 0) {
            err << "car-set: expected FIELD=VALUE, got: " << word << '\n';
            return false;
        }
        Assignment a{word.substr(0, eq), word.substr(eq + 1), {}};
        const auto address = carFieldAddress(a.field);
        if (!address) {
            err << "car-set: unknown field: " << a.field << '\n';
            return false;
        }
        a.address = *address;
        out.push_back(std::move(a));
    }
    return true;
}

// Validates and applies one assignment to the working copy. False (with the reason on err) for
// a value that is not a number or that the record cannot hold.
bool applyAssignment(CarEntry& car, const Assignment& a, std::ostream& err) {
    const int index = a.address.index;
    std::string text = a.text;
    if (carField(index)->kind != FieldKind::Name) {
        const FieldCheck check = clampFieldText(index, text);
        if (!check.isNumber) {
            err << "car-set: " << a.field << ": not a number: " << a.text << '\n';
            return false;
        }
        if (check.clamped) {
            err << "car-set: " << a.field << '=' << a.text << ": " << check.report << " ("
                << check.text << ")\n";
            text = check.text;
        }
    }
    switch (setFieldText(car, index, text, a.address.at)) {
    case FieldStore::Stored:
        return true;
    case FieldStore::NotANumber:
        err << "car-set: " << a.field << ": not a number: " << a.text << '\n';
        break;
    case FieldStore::DoesNotFit:
        err << "car-set: " << a.field << '=' << a.text
            << " refused: " << doesNotFitReason(index, text) << "; nothing written\n";
        break;
    case FieldStore::NoSuchField:
        err << "car-set: " << a.field << ": the car has no such "
            << (carField(index)->kind == FieldKind::Door ? "door" : "remap") << '\n';
        break;
    }
    return false;
}

// Compared as the bytes the save would write: a 16.16 text can stay while the value changes.
bool sameRecord(const CarEntry& a, const CarEntry& b) {
    if (encodeCarFixed(a.info) != encodeCarFixed(b.info) || a.doorList.size() != b.doorList.size())
        return false;
    for (std::size_t i = 0; i < a.doorList.size(); ++i)
        if (encodeDoor(a.doorList[i]) != encodeDoor(b.doorList[i])) return false;
    return true;
}

// "field: old -> new" for every value of the listing that changed.
void printChanges(std::ostream& out, const CarEntry& before, const CarEntry& after) {
    auto diff = [&](const std::vector<NamedValue>& x, const std::vector<NamedValue>& y) {
        for (std::size_t i = 0; i < x.size() && i < y.size(); ++i)
            if (x[i].text != y[i].text)
                out << x[i].name << ": " << x[i].text << " -> " << y[i].text << '\n';
    };
    diff(carRecordValues(before.info), carRecordValues(after.info));
    diff(carDoorValues(before.doorList), carDoorValues(after.doorList));
    if (before.name != after.name) out << "name: " << before.name << " -> " << after.name << '\n';
}

} // namespace

void registerCarSetCommand(Command& app, Context& ctx) {
    struct Args {
        CommonOptions common;
        std::string style;
        int asn = 0;
        std::vector<std::string> assignments;
        bool breakLinks = false;
    };
    auto args = std::make_shared<Args>();
    Command* cmd = app.addSubcommand(
        "car-set",
        "Change fields of the car with absolute sprite number ASN and save them into the style\n"
        "file (and ENGLISH.FXT for name=...), as the car info editor does.\n"
        "FIELD is a record field name as `cars` lists it: width, rbp_mass, value (all four),\n"
        "remap24[i].H|L|S, remap8[i], door[i].rpx|rpy|object|delta, name.\n"
        "A value outside the editor's limits is set to the limit, as the editor does, and\n"
        "reported on standard error (\"txtbox valve set to L val\" / \"... H val\").\n"
        "cx and cy are signed pixel offsets (-128 to 127, the signed byte the game reads): a\n"
        "value the record's field cannot hold is refused, never wrapped, with the value the\n"
        "game would read. 16.16 fields take decimals (1.5).\n"
        "A name is refused when the save could not write it (no ENGLISH.FXT, no entry for the\n"
        "car's model in it, a line break in the name).\n"
        "Standard output: \"field: old -> new\" for every changed value, or \"nothing changed\"\n"
        "when the car already has these values (nothing is written).\n"
        "The style file and ENGLISH.FXT are saved together or not at all, each under its lock\n"
        "and only if no other run saved it since this one read it; a save of them that was\n"
        "cut short is finished or rolled back first. A file with other hard links is refused\n"
        "unless --break-links.\n"
        "Exit status: 0 saved (or nothing to change); 1 no car there, a name the save could\n"
        "not write, load failed, or the save failed and nothing was written; 2 usage error,\n"
        "unknown field, a model outside the names table, a value that is not a number or that\n"
        "the field cannot hold (nothing written).");
    args->common.addTo(*cmd);
    cmd->addOption("STYLE", args->style, "The style file (.G24 or .GRY)")->path()->required();
    cmd->addOption("ASN", args->asn, "Absolute sprite number of the car")->required();
    cmd->addOption("FIELD=VALUE", args->assignments, "Fields to change")->required();
    cmd->addFlag("--break-links", args->breakLinks,
                 "Save a file that has other hard links (they keep the old file)");
    cmd->action([args, &ctx] {
        std::vector<Assignment> assignments;
        if (!parseAssignments(args->assignments, assignments, ctx.err)) {
            ctx.exitCode = kExitUsage;
            return;
        }
        AppOptions options = makeAppOptions(ctx, args->common);
        options.keepStyleContent = true; // it saves: the load keeps the bytes
        options.links = args->breakLinks ? LinkPolicy::Break : LinkPolicy::Refuse;
        auto platform = makePlatform(ctx, args->common);
        auto session = loadStyle(ctx, *platform, options, args->style, kLoadSprites);
        if (!session) return;
        CarEntry* car = session->cars.find(args->asn);
        if (!car) {
            ctx.err << "car-set: no car record at absolute sprite number " << args->asn
                    << "; `torquil-cli cars " << args->style << "` lists the cars' numbers (asn)\n";
            ctx.exitCode = kExitFailed;
            return;
        }

        CarEntry edited = *car;
        bool nameGiven = false;
        for (const Assignment& a : assignments) {
            if (!applyAssignment(edited, a, ctx.err)) {
                ctx.exitCode = kExitUsage;
                return;
            }
            nameGiven |= carField(a.address.index)->kind == FieldKind::Name;
        }
        const bool recordChanged = !sameRecord(*car, edited);
        const bool nameChanged = nameGiven && edited.name != car->name;
        if (nameChanged) {
            // The same rule editCar keeps, asked first so that nothing is saved when it refuses.
            const CarNameVerdict verdict =
                checkCarName(session->names, edited.info.model, edited.name);
            if (!verdict) {
                ctx.err << "car-set: " << verdict.message() << '\n';
                const CarNameCheck check = verdict.error().check;
                ctx.exitCode = check == CarNameCheck::NoPlace || check == CarNameCheck::BadText
                                   ? kExitUsage
                                   : kExitFailed;
                return;
            }
        }
        const CarEntry before = *car;
        CarEdit edit;
        // Values already stored go through the save too, which finds nothing changed.
        if (recordChanged || !nameChanged) {
            edit.info = edited.info;
            edit.doors = edited.doorList;
        }
        if (nameChanged) edit.name = edited.name;
        if (const Result<void> edited = editCar(*session, args->asn, edit); !edited) {
            ctx.err << "car-set: " << edited.message() << "; nothing written\n";
            ctx.exitCode = kExitFailed;
            return;
        }

        // The editor's "Save Changes": backups first, then the record in place and the names.
        const SaveOutcome outcome = saveChanges(*session, *platform);
        if (outcome.result != SaveResult::Saved ||
            (nameChanged && !outcome.namesSaved && !outcome.nothingChanged)) {
            // A save writes both files or neither.
            ctx.err << "car-set: nothing was saved: " << session->style.path.string()
                    << (nameChanged && recordChanged ? " and ENGLISH.FXT are" : " is")
                    << " as before\n";
            ctx.exitCode = kExitFailed;
            return;
        }
        if (outcome.nothingChanged)
            ctx.out << kNothingChanged << '\n';
        else
            printChanges(ctx.out, before, *car);
        ctx.exitCode = kExitOk;
    });
}

} // namespace torquil::cli
