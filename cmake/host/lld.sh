#!/bin/sh
# Links with LLVM's linker: g++ -wrapper lld.sh. A g++ for another host starts no linker but GNU's, even where -fuse-ld
# asks for one.
shift
exec ld.lld "$@"
