#pragma once

#include <QString>

#include <memory>

namespace graphs {

// A drawing colour as red, green, blue and alpha from 0.0 to 1.0, and the allocator that deals
// colours from a fixed palette by an arbitrary string key.
//
// Colours are handed out as std::shared_ptr<const ColourCode>: every holder of one key or one
// access point shares the same object, which stays valid however long any holder keeps it.
class ColourCode {
public:
    double red = 0.0;
    double green = 0.0;
    double blue = 0.0;
    double alpha = 1.0;

    ColourCode() = default;
    ColourCode(double r, double g, double b, double a = 1.0) : red(r), green(g), blue(b), alpha(a) {}

    // "%f, %f, %f" of red, green and blue; alpha is left out.
    QString description() const;

    // The same key always gets the same colour; new keys take the palette's colours in turn.
    // Thread-safe.
    static std::shared_ptr<const ColourCode> getColourCodeForKey(const QString& key);
    // Fills the 60-colour palette unless it already holds them.
    static void addDefaultColours();
};

using ColourCodePtr = std::shared_ptr<const ColourCode>;

} // namespace graphs
