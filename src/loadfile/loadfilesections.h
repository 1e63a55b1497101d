#pragma once

#include "loadfile/loadfilesectioninterface.h"

#include <memory>
#include <vector>

/// The sections of a load file: a main list, which is the image, and a second list that
/// no reader fills today. It owns every section in either list.
class LoadFileSections
{
public:
    /// Owned sections, in the order they were added.
    using List = std::vector<std::unique_ptr<LoadFileSectionInterface>>;

    /// Appends `section` to the main list.
    void add(std::unique_ptr<LoadFileSectionInterface> section);
    /// Appends `section` to the second list.
    void addee(std::unique_ptr<LoadFileSectionInterface> section);

    /// The first section of the main list holding all of `address` to `address + length`,
    /// or null.
    LoadFileSectionInterface *find(unsigned int address, unsigned int length) const;
    /// The sum of the main list's lengths.
    unsigned long long length() const;
    /// The sum of the second list's lengths.
    unsigned long long eelength() const;
    /// Deletes every section of the main list.
    void clear();
    /// Orders the main list by ascending address; equal addresses keep their order.
    void sortByAddress();

    /// The main list.
    const List &list() const { return m_list; }
    /// The second list.
    const List &eelist() const { return m_eelist; }

private:
    List m_list;
    List m_eelist;
};
