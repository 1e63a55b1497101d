#pragma once

#include "memorymap/section.h"

#include <QHash>
#include <QString>
#include <QTextStream>

#include <memory>
#include <vector>

class MemoryMap;
class MemoryMapElement;

/// The stack and heap sizes a script defines as symbols, each as the setting gives it.
struct LinkerScriptSizes
{
    QString stack;    ///< __STACKSIZE__
    QString irqStack; ///< __STACKSIZE_IRQ__
    QString fiqStack; ///< __STACKSIZE_FIQ__
    QString svcStack; ///< __STACKSIZE_SVC__
    QString abtStack; ///< __STACKSIZE_ABT__
    QString undStack; ///< __STACKSIZE_UND__
    QString heap;     ///< __HEAPSIZE__
};

/// Writes an ld script from a memory map and an optional section placement: the memory
/// regions, the symbols of segments and sizes, and each output section after everything its
/// address depends on, guarded by overflow assertions if asked. Errors are thrown as QString.
class LinkerScriptWriter
{
public:
    LinkerScriptWriter(QTextStream &stream, const MemoryMap *map, bool checkOverflow);
    ~LinkerScriptWriter();
    LinkerScriptWriter(const LinkerScriptWriter &) = delete;
    LinkerScriptWriter &operator=(const LinkerScriptWriter &) = delete;

    /// Writes the whole script; `placement` may be null.
    void write(const MemoryMap *placement, const LinkerScriptSizes &sizes);
    /// Writes `section` after the sections its address depends on, unless it is written.
    void layoutMemorySection(Section *section);

private:
    struct Frame;

    void writeMemoryRegions();
    void writeElementSymbols();
    void writeSegmentSymbols();
    void writeSizes(const LinkerScriptSizes &sizes);
    /// The list of sections: the memory map's own, then the placement file's.
    void makeSections(const MemoryMap *placement);
    Section *addSection(const MemoryMapElement *element, const MemoryMapElement *segment,
                        Section *previous);
    /// The step of the layout walk that `frame` stands at; false when the frame is finished.
    bool advance(Frame &frame, std::vector<Frame> &stack);
    /// Works out where `frame`'s section starts and how it is written.
    void plan(Frame &frame);
    QString startExpression(const Section *section) const;
    /// The address at which the sections that run in `run` run.
    QString runAddress(const Section *run) const;
    void writeHead(const Frame &frame);
    void writeTail(const Frame &frame);

    QTextStream &stream;
    const MemoryMap *map;
    const bool checkOverflow;
    /// The segments of the memory map, in reverse document order.
    QList<const MemoryMapElement *> segments;
    std::vector<std::unique_ptr<Section>> sections;
    QHash<QString, Section *> firstByName;
    QHash<QString, std::vector<Section *>> runInsByTarget;
};
