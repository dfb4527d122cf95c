# Run at build time. Writes the header with the hash of the library's sources and the day of the build: the same
# sources have the same hash wherever they lie, and SOURCE_DATE_EPOCH sets the day.
# In: source_dir, the checkout; output, the header.
cmake_policy(VERSION 3.23)

file(GLOB_RECURSE sources RELATIVE "${source_dir}" "${source_dir}/flowmere/*.h" "${source_dir}/flowmere/*.cpp")
list(SORT sources)
set(sums)
foreach(source IN LISTS sources)
    file(SHA256 "${source_dir}/${source}" sum)
    string(APPEND sums "${sum} ${source}\n")
endforeach()
string(SHA256 hash "${sums}")
string(SUBSTRING "${hash}" 0 8 hash)
string(TIMESTAMP date "%Y-%m-%d" UTC)
file(WRITE "${output}"
    "#pragma once\n\n#define FLOWMERE_BUILD_HASH \"${hash}\"\n#define FLOWMERE_BUILD_DATE \"${date}\"\n")
