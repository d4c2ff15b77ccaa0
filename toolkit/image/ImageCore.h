#pragma once

#include <cstdint>

#include "ole/Ox/OxObject.h"
#include "toolkit/image/Format.h"

namespace Ox::Image {

/// In which order rows follow one another.
enum eLayout : std::uint32_t { layoutTopDown = 0, layoutBottomUp = 1 };

namespace Core {

/// The description of an image as others read and change it.
class Interface : public virtual iVirtual {
public:
    [[nodiscard]] virtual std::uint32_t getWidth() const = 0;
    [[nodiscard]] virtual std::uint32_t getHeight() const = 0;
    virtual void setWidth(std::uint32_t width) = 0;
    virtual void setHeight(std::uint32_t height) = 0;
    [[nodiscard]] virtual Format getDataFormat() const = 0;
    virtual void setDataFormat(Format format) = 0;
    [[nodiscard]] virtual std::uint16_t getBitsPerComponent() const = 0;
    virtual void setBitsPerComponent(std::uint16_t bits) = 0;
    [[nodiscard]] virtual std::uint16_t getBitsPerPixel() const = 0;
    virtual void setBitsPerPixel(std::uint16_t bits) = 0;
    [[nodiscard]] virtual eLayout getLayout() const = 0;
    virtual void setLayout(eLayout layout) = 0;
    [[nodiscard]] virtual bool getCoreDataSet() const = 0;
    virtual void setCoreDataSet(bool isSet) = 0;
};

/// The seven facts of an image.
///
/// Units    Width and height in pixels; 0 means not stated.
/// Threads  Like a plain structure.
class Data : public Interface {
public:
    [[nodiscard]] std::uint32_t getWidth() const override { return width; }
    [[nodiscard]] std::uint32_t getHeight() const override { return height; }
    void setWidth(std::uint32_t value) override { width = value; }
    void setHeight(std::uint32_t value) override { height = value; }
    [[nodiscard]] Format getDataFormat() const override { return dataFormat; }
    void setDataFormat(Format value) override { dataFormat = value; }
    [[nodiscard]] std::uint16_t getBitsPerComponent() const override { return bitsPerComponent; }
    void setBitsPerComponent(std::uint16_t value) override { bitsPerComponent = value; }
    [[nodiscard]] std::uint16_t getBitsPerPixel() const override { return bitsPerPixel; }
    void setBitsPerPixel(std::uint16_t value) override { bitsPerPixel = value; }
    [[nodiscard]] eLayout getLayout() const override { return layout; }
    void setLayout(eLayout value) override { layout = value; }
    [[nodiscard]] bool getCoreDataSet() const override { return coreDataSet; }
    void setCoreDataSet(bool value) override { coreDataSet = value; }

    std::uint32_t width = 0;
    std::uint32_t height = 0;
    Format dataFormat = Format::unknown;
    std::uint16_t bitsPerComponent = 0;
    std::uint16_t bitsPerPixel = 0;
    eLayout layout = layoutTopDown;
    bool coreDataSet = false;
};

}  // namespace Core
}  // namespace Ox::Image
