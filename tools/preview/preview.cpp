// velmora_preview NAME OUT.png [--scale N] [--all] [--show CONTROL] [--text CONTROL=TEXT]...
//
// NAME is a form's name (its design is found below src), or `picture:NAME[:WIDTHxHEIGHT]`, or
// `sheet` for all drawings on one page. --all draws hidden controls as well, --show a single one
// with what it holds, --hide leaves one out. --text puts a caption or text in the place of the
// designed one.

#include "base/text.h"
#include "design_rows.h"
#include "design_view.h"
#include "platform/backends/qt/paint/look.h"
#include "platform/backends/qt/paint/picture_painter.h"
#include "texts.h"

#include <QGuiApplication>
#include <QImage>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <optional>
#include <sstream>

using namespace velmora;
namespace qt = platform::qt;

namespace {

QImage canvas(QSizeF size, double scale, QColor ground) {
    QImage image(static_cast<int>(std::ceil(size.width() * scale)),
                 static_cast<int>(std::ceil(size.height() * scale)),
                 QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(scale);
    image.fill(ground);
    return image;
}

std::optional<std::filesystem::path> findDesign(const std::string &name) {
    for (const auto &entry : std::filesystem::recursive_directory_iterator(VELMORA_SOURCE "/src"))
        if (entry.path().filename() == name + ".form")
            return entry.path();
    return std::nullopt;
}

struct Options {
    double scale = 1;
    bool everything = false;
    std::vector<std::string> shown;
    std::vector<std::string> hidden;
    std::vector<std::pair<std::string, std::string>> texts;
    std::vector<std::string> names;
};

formc::Thing *findThing(formc::Thing &thing, const std::string &name) {
    if (thing.name == name)
        return &thing;
    for (formc::Thing &child : thing.children)
        if (formc::Thing *found = findThing(child, name))
            return found;
    return nullptr;
}

formc::Setting settingOf(const formc::Thing &thing, std::string_view property) {
    formc::Setting setting;
    setting.row = formc::findProperty(property, thing.kind->bit);
    return setting;
}

bool adapt(formc::Thing &form, const Options &options) {
    const auto change = [&](const std::string &name, const auto &how) {
        formc::Thing *thing = findThing(form, name);
        if (thing == nullptr)
            std::cerr << "there is no control '" << name << "'\n";
        else
            how(*thing);
        return thing != nullptr;
    };
    bool good = true;
    for (const std::string &name : options.shown)
        good &= change(name, [](formc::Thing &thing) {
            std::erase_if(thing.settings, [](const formc::Setting &setting) {
                return setting.row->word == "hidden";
            });
        });
    for (const std::string &name : options.hidden)
        good &= change(name, [](formc::Thing &thing) {
            thing.settings.push_back(settingOf(thing, "hidden"));
        });
    for (const auto &[name, text] : options.texts)
        good &= change(name, [&text = text](formc::Thing &thing) {
            const std::string_view word = thing.kind->word == "TextBox" ? "text" : "caption";
            std::erase_if(thing.settings,
                          [&](const formc::Setting &setting) { return setting.row->word == word; });
            formc::Setting setting = settingOf(thing, word);
            setting.text = fromUtf8(text);
            thing.settings.push_back(setting);
        });
    return good;
}

std::optional<QImage> designImage(const std::string &name, const Options &options) {
    const auto path = findDesign(name);
    if (!path)
        return std::nullopt;
    std::ifstream in(*path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    const formc::Skin skin =
        formc::withModel(formc::withTexts(formc::readSkin(VELMORA_SOURCE "/assets/skin"),
                                          formc::readTexts(VELMORA_SOURCE "/assets/texts")),
                         VELMORA_SOURCE "/src/playback/Main.form");
    formc::Design design = formc::parseDesign(text.str(), skin);
    for (const formc::Fault &fault : design.faults)
        std::cerr << path->string() << ':' << fault.line << ": " << fault.text << '\n';
    if (!design.faults.empty() || !adapt(design.form, options))
        return std::nullopt;
    QImage image = canvas(preview::DesignView::sizeOf(design.form), options.scale, Qt::transparent);
    QPainter painter(&image);
    qt::Fonts fonts;
    qt::TextPainter texts(fonts);
    preview::DesignView(painter, texts, fonts, options.everything).draw(design.form);
    return image;
}

std::optional<QImage> pictureImage(const std::string &request, double scale) {
    const std::size_t colon = request.find(':');
    const forms::Picture picture = preview::pictureNamed(request.substr(0, colon));
    if (picture == forms::Picture::None)
        return std::nullopt;
    QSizeF size = qt::pictureSize(picture);
    if (colon != std::string::npos) {
        std::istringstream in(request.substr(colon + 1));
        char by = 0;
        double width = 0;
        double height = 0;
        if (!(in >> width >> by >> height) || by != 'x')
            return std::nullopt;
        size = {width, height};
    }
    QImage image = canvas(size, scale, Qt::transparent);
    QPainter painter(&image);
    qt::paintPicture(painter, picture, QRectF(QPointF(), size));
    return image;
}

QImage sheetImage(double scale) {
    constexpr int columns = 10;
    constexpr double cell = 84;
    const int rows = (forms::pictureCount - 1 + columns - 1) / columns;
    QImage image =
        canvas({columns * cell, rows * cell}, scale, QColor::fromRgba(qt::look::bodyMiddle));
    QPainter painter(&image);
    qt::Fonts fonts;
    qt::TextPainter texts(fonts);
    const forms::Font font(u"Arial", 6);
    for (int i = 1; i < forms::pictureCount; ++i) {
        const int row = (i - 1) / columns;
        const QPointF corner((i - 1) % columns * cell, row * cell);
        const auto picture = static_cast<forms::Picture>(i);
        const QSizeF size = qt::pictureSize(picture).boundedTo({cell - 8, cell - 20});
        qt::paintPicture(painter, picture, QRectF(corner + QPointF(4, 4), size));
        qt::TextLook look;
        look.font = &font;
        look.colour = QColor::fromRgba(qt::look::secondVoice);
        const auto name = forms::pictureNames[i];
        texts.draw(painter, QRectF(corner + QPointF(2, cell - 12), QSizeF(cell - 4, 12)),
                   std::u16string(name.begin(), name.end()), look);
    }
    return image;
}

bool parseArguments(int count, char **values, Options &options) {
    for (int i = 1; i < count; ++i) {
        const std::string argument = values[i];
        const std::string value = i + 1 < count ? values[i + 1] : "";
        if (argument == "--all") {
            options.everything = true;
            continue;
        }
        if (!argument.starts_with("--")) {
            options.names.push_back(argument);
            continue;
        }
        ++i;
        const std::size_t equals = value.find('=');
        if (argument == "--scale")
            options.scale = std::atof(value.c_str());
        else if (argument == "--show")
            options.shown.push_back(value);
        else if (argument == "--hide")
            options.hidden.push_back(value);
        else if (argument == "--text" && equals != std::string::npos)
            options.texts.emplace_back(value.substr(0, equals), value.substr(equals + 1));
        else
            return false;
    }
    return options.names.size() == 2 && options.scale >= 0.5 && options.scale <= 8;
}

} // namespace

int main(int count, char **values) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication app(count, values);
    Options options;
    if (!parseArguments(count, values, options)) {
        std::cerr << "usage: velmora_preview NAME OUT.png [--scale N] [--all] [--show CONTROL] "
                     "[--hide CONTROL] [--text CONTROL=TEXT]\n";
        return 2;
    }
    const std::string &name = options.names[0];
    std::optional<QImage> image;
    if (name == "sheet")
        image = sheetImage(options.scale);
    else if (name.starts_with("picture:"))
        image = pictureImage(name.substr(8), options.scale);
    else
        image = designImage(name, options);
    if (!image || !image->save(QString::fromStdString(options.names[1]))) {
        std::cerr << name << ": cannot be drawn to " << options.names[1] << '\n';
        return 1;
    }
    return 0;
}
