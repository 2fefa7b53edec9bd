// torquil-cli cars: every loaded car with every field of its record, as text, CSV or JSON.

#include "cli/cli.h"

#include "cars/car_listing.h"
#include "cars/fixed_point.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <ostream>

namespace torquil::cli {

namespace {

struct Car {
    int asn;
    const CarEntry* entry;
};

std::vector<Car> loadedCars(const StyleSession& s) {
    std::vector<Car> cars;
    for (std::size_t asn = 1; asn < s.cars.slots.size(); ++asn)
        if (s.cars.slots[asn].inUse) cars.push_back({static_cast<int>(asn), &s.cars.slots[asn]});
    return cars;
}

std::vector<NamedValue> allValues(const Car& car) {
    std::vector<NamedValue> values{{"asn", std::to_string(car.asn)},
                                   {"name", car.entry->name},
                                   {"fileSeek", std::to_string(car.entry->fileSeek)}};
    for (auto&& v : carRecordValues(car.entry->info)) values.push_back(std::move(v));
    for (auto&& v : carDoorValues(car.entry->doorList)) values.push_back(std::move(v));
    return values;
}

void printText(std::ostream& out, const std::vector<Car>& cars) {
    for (std::size_t i = 0; i < cars.size(); ++i) {
        if (i) out << '\n';
        for (const NamedValue& v : allValues(cars[i])) out << v.name << '=' << v.text << '\n';
    }
}

std::string csvCell(const std::string& text) {
    if (text.find_first_of(",\"\r\n") == std::string::npos) return text;
    std::string quoted = "\"";
    for (char c : text) quoted += c == '"' ? std::string("\"\"") : std::string(1, c);
    return quoted + "\"";
}

void printCsv(std::ostream& out, const std::vector<Car>& cars) {
    // Door columns for as many doors as the car with the most has; the others leave them empty.
    std::size_t maxDoors = 0;
    for (const Car& car : cars) maxDoors = std::max(maxDoors, car.entry->doorList.size());
    Car widest{0, nullptr};
    CarEntry header;
    header.doorList.resize(maxDoors);
    widest.entry = &header;
    const std::vector<NamedValue> columns = allValues(widest);
    for (std::size_t c = 0; c < columns.size(); ++c) out << (c ? "," : "") << columns[c].name;
    out << '\n';
    for (const Car& car : cars) {
        const std::vector<NamedValue> values = allValues(car);
        for (std::size_t c = 0; c < columns.size(); ++c)
            out << (c ? "," : "") << (c < values.size() ? csvCell(values[c].text) : "");
        out << '\n';
    }
}

nlohmann::ordered_json carJson(const Car& car) {
    const CarEntry& e = *car.entry;
    const CarInfo& c = e.info;
    nlohmann::ordered_json j;
    j["asn"] = car.asn;
    j["name"] = e.name;
    j["fileSeek"] = e.fileSeek;
    for (const NamedValue& v : carRecordValues(c)) {
        // Array items are given as arrays below.
        if (v.name.find('[') != std::string::npos) continue;
        const CarField* f = carFieldByName(v.name);
        if (f && f->kind == FieldKind::Fixed)
            j[v.name] = parseNumber(v.text).value_or(0.0); // the value the editor shows
        else
            j[v.name] = std::stoll(v.text);
    }
    j["remap24"] = nlohmann::ordered_json::array();
    for (const auto& hls : c.remap24)
        j["remap24"].push_back({{"H", hls[0]}, {"L", hls[1]}, {"S", hls[2]}});
    j["remap8"] = c.remap8;
    j["value"] = c.value;
    j["door_records"] = nlohmann::ordered_json::array();
    for (const DoorRec& d : e.doorList)
        j["door_records"].push_back(
            {{"rpx", d.rpx}, {"rpy", d.rpy}, {"object", d.object}, {"delta", d.delta}});
    return j;
}

} // namespace

void registerCarsCommand(Command& app, Context& ctx) {
    struct Args {
        CommonOptions common;
        std::string style;
        std::string format = "text";
    };
    auto args = std::make_shared<Args>();
    Command* cmd = app.addSubcommand(
        "cars",
        "List every loaded car with every field of its record, by the record's field names.\n"
        "16.16 fields are given as the editor shows them (three decimals), moment raw, cx and cy\n"
        "as the signed pixel offsets the game reads (-128 to 127); arrays by\n"
        "index (remap24[i].H, remap8[i], value[i]) and door records as door[i].rpx ... .\n"
        "text: name=value lines, a blank line between cars; csv: one row per car; json: an array.\n"
        "Exit status: 0 listed, 1 load failed, 2 usage error.");
    args->common.addTo(*cmd);
    cmd->addOption("STYLE", args->style, "The style file (.G24 or .GRY)")->path()->required();
    cmd->addOption("--format", args->format, "text, csv or json")->oneOf({"text", "csv", "json"});
    cmd->action([args, &ctx] {
        AppOptions options = makeAppOptions(ctx, args->common);
        auto platform = makePlatform(ctx, args->common);
        auto session = loadStyle(ctx, *platform, options, args->style, kLoadSprites);
        if (!session) return;
        const std::vector<Car> cars = loadedCars(*session);
        if (args->format == "csv") {
            printCsv(ctx.out, cars);
        } else if (args->format == "json") {
            nlohmann::ordered_json list = nlohmann::ordered_json::array();
            for (const Car& car : cars) list.push_back(carJson(car));
            // Names are the game's 8-bit text, not always valid UTF-8.
            ctx.out << list.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace)
                    << '\n';
        } else {
            printText(ctx.out, cars);
        }
        ctx.exitCode = kExitOk;
    });
}

} // namespace torquil::cli
