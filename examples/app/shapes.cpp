// Shapes registered by static constructors and printed through virtual functions: the start-up
// code must have run the constructor table for any of this to show.
#include "shapes.h"

#include <cstdio>

namespace {

class Shape
{
public:
    explicit Shape(const char *name) : name(name), next(first) { first = this; }
    virtual ~Shape() = default;
    virtual long area() const = 0;

    static const Shape *first;
    const char *const name;
    const Shape *const next;
};

const Shape *Shape::first = nullptr;

class Rectangle : public Shape
{
public:
    Rectangle(const char *name, long width, long height)
        : Shape(name), width(width), height(height)
    {
    }
    long area() const override { return width * height; }

private:
    long width, height;
};

class Triangle : public Shape
{
public:
    Triangle(const char *name, long base, long height) : Shape(name), base(base), height(height)
    {
    }
    long area() const override { return base * height / 2; }

private:
    long base, height;
};

const Rectangle square("square", 4, 4);
const Triangle triangle("triangle", 6, 5);

} // namespace

int shapes_report(void)
{
    int count = 0;
    for (const Shape *shape = Shape::first; shape; shape = shape->next, ++count)
        std::printf("%s has area %ld\n", shape->name, shape->area());
    return count;
}
