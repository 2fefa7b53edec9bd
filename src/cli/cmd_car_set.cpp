// torquil-cli car-set: change fields of one car record (and its name) with the editor's limits,
// then save through the editor's save sequence.

#include "cli/cli.h"

#include "cars/car_listing.h"
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
        err << "car-set: " << a.field << ": " << text << " does not fit the record's field\n";
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

void registerCarSetCommand(CLI::App& app, Context& ctx) {
    struct Args {
        CommonOptions common;
        std::string style;
        int asn = 0;
        std::vector<std::string> assignments;
    };
    auto args = std::make_shared<Args>();
    CLI::App* cmd = app.add_subcommand(
        "car-set",
        "Change fields of the car with absolute sprite number ASN and save them into the style\n"
        "file (and ENGLISH.FXT for name=...), as the car info editor does.\n"
        "FIELD is a record field name as `cars` lists it: width, rbp_mass, value (all four),\n"
        "remap24[i].H|L|S, remap8[i], door[i].rpx|rpy|object|delta, name.\n"
        "Values outside the editor's limits are set to the limit, reported on standard error\n"
        "(\"txtbox valve set to L val\" / \"... H val\"). 16.16 fields take decimals (1.5).\n"
        "Standard output: \"field: old -> new\" for every changed value, or \"nothing changed\"\n"
        "when the car already has these values (nothing is written).\n"
        "Exit status: 0 saved (or nothing to change), 1 no car there, load or save failed,\n"
        "2 usage error, unknown field or a value that is not a number (nothing written).");
    args->common.addTo(*cmd);
    cmd->add_option("STYLE", args->style, "The style file (.G24 or .GRY)")->required();
    cmd->add_option("ASN", args->asn, "Absolute sprite number of the car")->required();
    cmd->add_option("FIELD=VALUE", args->assignments, "Fields to change")->required();
    cmd->callback([args, &ctx] {
        std::vector<Assignment> assignments;
        if (!parseAssignments(args->assignments, assignments, ctx.err)) {
            ctx.exitCode = kExitUsage;
            return;
        }
        AppOptions options = makeAppOptions(ctx, args->common);
        options.keepStyleContent = true; // read once for the load and the save
        auto platform = makePlatform(ctx, args->common);
        auto session = loadStyle(ctx, *platform, options, args->style, kLoadSprites);
        if (!session) return;
        CarEntry* car = session->cars.find(args->asn);
        if (!car) {
            ctx.err << "car-set: no car record at absolute sprite number " << args->asn << '\n';
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
            if (edited.info.model >= kCarNameCount) {
                ctx.err << "car-set: model " << int{edited.info.model}
                        << " has no place in the car names table\n";
                ctx.exitCode = kExitUsage;
                return;
            }
            if (!session->names.fromFxt) {
                ctx.err << "car-set: the style has no ENGLISH.FXT with car names beside it; "
                           "names cannot be saved\n";
                ctx.exitCode = kExitFailed;
                return;
            }
            if (session->names.keys[static_cast<std::size_t>(edited.info.model)].empty()) {
                ctx.err << "car-set: ENGLISH.FXT has no entry for model " << int{edited.info.model}
                        << "; its name cannot be saved\n";
                ctx.exitCode = kExitFailed;
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
        // The model was checked against the names table above.
        (void)editCar(*session, args->asn, edit);

        // The editor's "Save Changes": backups first, then the record in place and the names.
        const SaveOutcome outcome = saveChanges(*session, *platform);
        if (outcome.result != SaveResult::Saved ||
            (nameChanged && !outcome.namesSaved && !outcome.nothingChanged)) {
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
