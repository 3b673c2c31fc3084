"""Reads what the tests ask of a Windows program file: header, sections, imports, resources."""

import struct
from pathlib import Path

EXPORTS, IMPORTS, RESOURCES = 0, 1, 2  # places in the table of data directories
OPTIONAL_HEADER = 24  # behind the signature and the file header
WRITABLE = 0x80000000  # among the flags of a section


class PeFile:
    def __init__(self, path):
        self.data = Path(path).read_bytes()
        self._start = self._number("I", 60)
        assert self.data[self._start:self._start + 4] == b"PE\0\0"

    @property
    def machine(self):
        return self._number("H", self._start + 4)

    @property
    def time_stamp(self):
        return self._number("I", self._start + 8)

    @property
    def subsystem(self):
        return self._number("H", self._start + OPTIONAL_HEADER + 68)

    def has_directory(self, index):
        return self._directory_address(index) != 0

    def imported_libraries(self):
        """The names of the DLLs that the system loads before the first instruction."""
        names, place = [], self._directory(IMPORTS)
        while name := self._number("I", place + 12):
            begin = self._offset(name)
            names.append(self.data[begin:self.data.index(b"\0", begin)].decode())
            place += 20
        return names

    def resources(self):
        """A pair for each item: type, number and language; content."""
        root = self._directory(RESOURCES)

        def walk(place, path):
            for name, target in self._resource_entries(place):
                if target & 0x80000000:
                    yield from walk(root + (target & 0x7FFFFFFF), path + (name,))
                else:
                    address, size = struct.unpack_from("<2I", self.data, root + target)
                    begin = self._offset(address)
                    yield path + (name,), self.data[begin:begin + size]

        return list(walk(root, ()))

    def section_flags(self, offset):
        """Of the section that holds the byte at that place in the file."""
        for place in self._sections():
            size, begin = struct.unpack_from("<2I", self.data, place + 16)
            if begin <= offset < begin + size:
                return self._number("I", place + 36)
        raise ValueError(f"no section holds the byte {offset:#x} of the file")

    def _resource_entries(self, place):
        count = sum(struct.unpack_from("<2H", self.data, place + 12))
        return struct.iter_unpack("<2I", self.data[place + 16:place + 16 + 8 * count])

    def _directory_address(self, index):
        return self._number("I", self._start + OPTIONAL_HEADER + 112 + 8 * index)

    def _directory(self, index):
        return self._offset(self._directory_address(index))

    def _offset(self, address):
        """Where in the file the byte lies that is loaded to `address`."""
        for place in self._sections():
            begin, size, offset = struct.unpack_from("<3I", self.data, place + 12)
            if begin <= address < begin + size:
                return address - begin + offset
        raise ValueError(f"no section holds the address {address:#x}")

    def _sections(self):
        """Where the header of each section lies."""
        count = self._number("H", self._start + 6)
        table = self._start + OPTIONAL_HEADER + self._number("H", self._start + 20)
        return range(table, table + 40 * count, 40)

    def _number(self, layout, place):
        return struct.unpack_from("<" + layout, self.data, place)[0]
