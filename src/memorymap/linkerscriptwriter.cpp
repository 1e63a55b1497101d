#include "memorymap/linkerscriptwriter.h"

#include "memorymap/memorymap.h"

namespace {

/// `value` in lower-case hexadecimal, at least 8 digits.
QString h8(unsigned long long value)
{
    return QString::number(value, 16).rightJustified(8, QLatin1Char('0'));
}

QString segmentName(const Section *section)
{
    return getMemoryMapElementName(section->segment);
}

/// The end of `segment`, kept in 64 bits so that a segment reaching the top of the 32-bit
/// space ends at 0x100000000 and not at 0.
unsigned long long segmentEnd(const MemoryMapElement *segment)
{
    return static_cast<unsigned long long>(segment->address()) + segment->size();
}

} // namespace

/// One section on the layout walk, with what is worked out about it on the way.
struct LinkerScriptWriter::Frame
{
    enum Phase { Enter, Plan, RunSectionReady, RunInMembers };
    /// The three ways a section is written: it runs in another section's place, it is the
    /// place where others run, or neither.
    enum Form { RunsElsewhere, RunArea, Plain };

    explicit Frame(Section *section) : section(section) {}

    Section *section;
    Phase phase = Enter;
    Form form = Plain;
    QString start;                                   ///< the start expression
    const std::vector<Section *> *members = nullptr; ///< the sections that run in this one
    size_t nextMember = 0;
    const Section *run = nullptr; ///< where this section runs
};

LinkerScriptWriter::LinkerScriptWriter(QTextStream &stream, const MemoryMap *map,
                                       bool checkOverflow)
    : stream(stream), map(map), checkOverflow(checkOverflow), segments(map->getSegments(true))
{
}

LinkerScriptWriter::~LinkerScriptWriter() = default;

void LinkerScriptWriter::write(const MemoryMap *placement, const LinkerScriptSizes &sizes)
{
    writeMemoryRegions();
    writeElementSymbols();
    writeSegmentSymbols();
    writeSizes(sizes);
    makeSections(placement);
    for (const auto &section : sections)
        layoutMemorySection(section.get());
    stream << "}\n\n";
}

void LinkerScriptWriter::writeMemoryRegions()
{
    stream << "MEMORY\n{\n";
    if (checkOverflow) // beyond the 32-bit space and empty: whatever is left unplaced fails
        stream << "  UNPLACED_SECTIONS (wx) : ORIGIN = 0x100000000, LENGTH = 0\n";
    for (const MemoryMapElement *segment : std::as_const(segments))
        stream << "  " << getMemoryMapElementName(segment) << " ("
               << (segment->isReadOnly() ? "rx" : "wx") << ") : ORIGIN = 0x"
               << h8(segment->address()) << ", LENGTH = 0x" << h8(segment->size()) << "\n";
    stream << "}\n\n";
}

void LinkerScriptWriter::writeElementSymbols()
{
    const QList<const MemoryMapElement *> elements = map->getAllElements();
    for (const MemoryMapElement *element : elements) {
        if (element->hasAddressSymbol() && element->hasAddress())
            stream << element->addressSymbol() << " = " << element->addressAsString() << ";\n";
        if (element->hasSizeSymbol() && element->hasSize())
            stream << element->sizeSymbol() << " = " << element->sizeAsString() << ";\n";
    }
    if (!elements.isEmpty())
        stream << "\n";
}

void LinkerScriptWriter::writeSegmentSymbols()
{
    stream << "SECTIONS\n{\n";
    for (const MemoryMapElement *segment : std::as_const(segments)) {
        const QString name = getMemoryMapElementName(segment);
        stream << "  __" << name << "_segment_start__ = 0x" << h8(segment->address()) << ";\n"
               << "  __" << name << "_segment_end__ = 0x" << h8(segmentEnd(segment)) << ";\n";
    }
    stream << "\n";
}

void LinkerScriptWriter::writeSizes(const LinkerScriptSizes &sizes)
{
    const std::pair<const char *, const QString *> lines[] = {
        {"__STACKSIZE__", &sizes.stack},        {"__STACKSIZE_IRQ__", &sizes.irqStack},
        {"__STACKSIZE_FIQ__", &sizes.fiqStack}, {"__STACKSIZE_SVC__", &sizes.svcStack},
        {"__STACKSIZE_ABT__", &sizes.abtStack}, {"__STACKSIZE_UND__", &sizes.undStack},
        {"__HEAPSIZE__", &sizes.heap}};
    for (const auto &[symbol, value] : lines)
        stream << "  " << symbol << " = " << (value->isEmpty() ? QStringLiteral("0") : *value)
               << ";\n";
    stream << "\n";
}

Section *LinkerScriptWriter::addSection(const MemoryMapElement *element,
                                        const MemoryMapElement *segment, Section *previous)
{
    sections.push_back(std::make_unique<Section>(element, segment, previous));
    Section *section = sections.back().get();
    const QString name = section->name(false);
    if (!firstByName.contains(name))
        firstByName.insert(name, section);
    if (element->hasRunIn())
        runInsByTarget[element->runIn()].push_back(section);
    return section;
}

void LinkerScriptWriter::makeSections(const MemoryMap *placement)
{
    for (const MemoryMapElement *segment : std::as_const(segments)) {
        Section *previous = nullptr;
        const QList<const MemoryMapElement *> own = map->getSections(segment, true);
        for (const MemoryMapElement *element : own)
            previous = addSection(element, segment, previous);
    }
    if (!placement)
        return;

    // The first segment of each name in document order, as a lookup by name finds it; and
    // the section added last to the segments of each linker name.
    QHash<QString, const MemoryMapElement *> segmentByName;
    const QList<const MemoryMapElement *> elements = map->getAllElements();
    for (const MemoryMapElement *element : elements)
        if (element->elementType == MemoryMapElement::MemorySegment &&
            element->hasAttribute("name") && !segmentByName.contains(element->name()))
            segmentByName.insert(element->name(), element);
    QHash<QString, Section *> lastOfSegment;
    for (const auto &section : sections)
        lastOfSegment.insert(segmentName(section.get()), section.get());

    const QList<const MemoryMapElement *> placementSegments = placement->getSegments(true);
    for (const MemoryMapElement *placementSegment : placementSegments) {
        // The name may list alternatives: the first one the memory map has decides.
        const QStringList parts =
            placementSegment->name().split(QLatin1Char(';'), Qt::SkipEmptyParts);
        const MemoryMapElement *segment = nullptr;
        for (const QString &part : parts)
            if ((segment = segmentByName.value(part)))
                break;
        if (!segment)
            throw QString(QStringLiteral("section placement file referenced segment ") +
                          placementSegment->name() + QStringLiteral(" not in memory map file"));

        const QString name = getMemoryMapElementName(segment);
        Section *previous = lastOfSegment.value(name);
        const QList<const MemoryMapElement *> placed =
            placement->getSections(placementSegment, true);
        for (const MemoryMapElement *element : placed)
            previous = addSection(element, segment, previous);
        if (previous)
            lastOfSegment.insert(name, previous);
    }
}

void LinkerScriptWriter::layoutMemorySection(Section *section)
{
    // An explicit stack instead of recursion: the chains of sections can be as long as the
    // files make them.
    std::vector<Frame> stack;
    stack.emplace_back(section);
    while (!stack.empty())
        if (!advance(stack.back(), stack))
            stack.pop_back();
}

bool LinkerScriptWriter::advance(Frame &frame, std::vector<Frame> &stack)
{
    // Each branch that pushes a frame returns at once: the push may move `frame`.
    Section *section = frame.section;
    switch (frame.phase) {
    case Frame::Enter:
        if (section->done)
            return false;
        if (section->visiting)
            throw QString(QStringLiteral("cyclic memory section dependency with section ") +
                          section->name(false));
        section->visiting = true;
        frame.phase = Frame::Plan;
        if (section->previous && !section->previous->done)
            stack.emplace_back(section->previous);
        return true;
    case Frame::Plan:
        plan(frame);
        if (frame.form == Frame::RunsElsewhere) {
            // Only what the run section's address depends on, not the run section itself,
            // which may in turn depend on this one.
            frame.phase = Frame::RunSectionReady;
            if (frame.run->previous && !frame.run->previous->done)
                stack.emplace_back(frame.run->previous);
            return true;
        }
        if (frame.form == Frame::RunArea) {
            frame.phase = Frame::RunInMembers;
            return true;
        }
        break;
    case Frame::RunSectionReady:
        break;
    case Frame::RunInMembers:
        if (frame.nextMember < frame.members->size()) {
            stack.emplace_back((*frame.members)[frame.nextMember++]);
            return true;
        }
        break;
    }
    writeHead(frame);
    writeTail(frame);
    section->visiting = false;
    section->done = true;
    return false;
}

void LinkerScriptWriter::plan(Frame &frame)
{
    const Section *section = frame.section;
    const MemoryMapElement *element = section->section;
    const QString fullName = section->name(false);
    frame.start = startExpression(section);

    const auto found = runInsByTarget.constFind(fullName);
    frame.members = found == runInsByTarget.cend() ? nullptr : &found.value();
    const bool hasMembers = frame.members && !frame.members->empty();
    if (element->hasRunIn() && hasMembers)
        throw QString(QStringLiteral("run section ") + fullName +
                      QStringLiteral(" cannot have run in sections"));

    if (element->hasRunIn()) {
        frame.form = Frame::RunsElsewhere;
        frame.run = firstByName.value(element->runIn());
        if (!frame.run)
            throw QString(QStringLiteral("cannot find run section ") + element->runIn() +
                          QStringLiteral(" referenced in ") + section->name(true));
    } else {
        frame.form = hasMembers ? Frame::RunArea : Frame::Plain;
    }
}

QString LinkerScriptWriter::startExpression(const Section *section) const
{
    const MemoryMapElement *element = section->section;
    const MemoryMapElement *segment = section->segment;
    if (element->hasAddress()) {
        if (element->address() >= segment->address() && element->address() < segmentEnd(segment))
            return QStringLiteral("0x") + h8(element->address());
        throw QString(
            QStringLiteral("The ") + section->name(false) +
            QStringLiteral(" section has been placed at an absolute address outside of its "
                           "segment range."));
    }

    QString start;
    if (!section->previous)
        start = QStringLiteral("__") + segmentName(section) + QStringLiteral("_segment_start__");
    else if (section->previous->section->hasRunIn())
        start = QStringLiteral("__") + section->previous->name(true) +
                QStringLiteral("_load_start__ + SIZEOF(") + section->previous->name(false) +
                QLatin1Char(')');
    else
        start = QStringLiteral("__") + section->previous->name(true) + QStringLiteral("_end__");
    if (element->hasAlignment() && element->alignment() > 1)
        start = QStringLiteral("ALIGN(") + start + QStringLiteral(" , ") +
                QString::number(element->alignment()) + QLatin1Char(')');
    return start;
}

QString LinkerScriptWriter::runAddress(const Section *run) const
{
    if (run->section->hasAddress())
        return QStringLiteral("0x") + h8(run->section->address());
    if (!run->previous)
        return QStringLiteral("__") + segmentName(run) + QStringLiteral("_segment_start__");
    return QStringLiteral("__") + run->previous->name(true) + QStringLiteral("_end__");
}

void LinkerScriptWriter::writeHead(const Frame &frame)
{
    const Section *section = frame.section;
    const MemoryMapElement *element = section->section;
    const QString fullName = section->name(false);
    const QString name = section->name(true);
    const char *load = element->load() ? "" : " (NOLOAD)";
    const QString input = element->hasInputSections()
                              ? element->inputSections()
                              : QStringLiteral("*(") + fullName + QLatin1Char(')');

    if (frame.form != Frame::RunArea)
        stream << "  __" << name << "_load_start__ = " << frame.start << ";\n";
    stream << "  " << fullName << " ";
    if (frame.form == Frame::RunsElsewhere)
        stream << runAddress(frame.run) << load << " : AT(" << frame.start << ")\n";
    else
        stream << frame.start << load << " :\n";
    stream << "  {\n"
           << "    __" << name << "_start__ = .;\n";
    if (frame.form != Frame::RunArea) {
        stream << "    " << input << "\n";
        return;
    }
    // The run area takes the room of the largest section that runs in it.
    for (const Section *member : *frame.members)
        stream << "    . = MAX(__" << name << "_start__ + SIZEOF(" << member->name(false)
               << "), .);\n";
}

void LinkerScriptWriter::writeTail(const Frame &frame)
{
    const Section *section = frame.section;
    const MemoryMapElement *element = section->section;
    const QString fullName = section->name(false);
    const QString name = section->name(true);
    const QString segment = segmentName(section);
    const bool runsElsewhere = element->hasRunIn();

    if (element->hasSize())
        stream << "    . = MAX(__" << name << "_start__ + " << element->sizeAsString()
               << " , .);\n";
    stream << "  }\n"
           << "  __" << name << "_end__ = __" << name << "_start__ + SIZEOF(" << fullName
           << ");\n\n";
    if (runsElsewhere)
        stream << "  __" << name << "_load_end__ = __" << name << "_load_start__ + SIZEOF("
               << fullName << ");\n\n";
    if (section->last)
        stream << "  __" << segment << "_segment_used_end__ = " << frame.start << " + SIZEOF("
               << fullName << ");\n\n";
    if (!checkOverflow)
        return;

    const QString segmentLimit = QStringLiteral("(__") + segment +
                                 QStringLiteral("_segment_start__ + 0x") +
                                 h8(section->segment->size()) + QLatin1Char(')');
    const QString tooLarge = QStringLiteral("\"error: ") + fullName +
                             QStringLiteral(" is too large to fit in ") + segment +
                             QStringLiteral(" memory segment\");\n\n");
    const QString segmentStart =
        QStringLiteral("__") + segment + QStringLiteral("_segment_start__");
    if (runsElsewhere) {
        // The check is on the load address, in the segment where the section is loaded.
        const QString loadEnd = QStringLiteral("(__") + name +
                                QStringLiteral("_load_start__ + SIZEOF(") + fullName +
                                QStringLiteral("))");
        stream << "  . = ASSERT(" << loadEnd << " >= " << segmentStart << " && " << loadEnd
               << " <= " << segmentLimit << " , " << tooLarge;
    } else {
        const QString end = QStringLiteral("__") + name + QStringLiteral("_end__");
        stream << "  . = ASSERT(" << end << " >= " << segmentStart << " && " << end
               << " <= " << segmentLimit << " , " << tooLarge;
    }
    if (section->previous && element->hasAddress()) {
        const Section *previous = section->previous;
        const QString before =
            previous->name(true) + (previous->section->hasRunIn() ? "_load" : "");
        const QString after = name + (runsElsewhere ? "_load" : "");
        stream << "  . = ASSERT(__" << before << "_end__ <= __" << after
               << "_start__ , \"error: section " << previous->name(false)
               << " overlaps absolute placed section " << fullName << "\");\n\n";
    }
}
