# Writes a copy of the export definition in which every stdcall name carries
# its @N decoration, found in the compiled objects. The 32-bit DLL is linked
# from it with --kill-at (undecorated export names) and the import libraries
# are built from it with -k (decorated symbols for 32-bit clients, undecorated
# names in the DLL).
#   -DNM=<nm> -DDEF=<in.def> -DOUT=<out.def> -DOBJECTS=<obj1|obj2|...>
string(REPLACE "|" ";" object_list "${OBJECTS}")
execute_process(COMMAND ${NM} --defined-only -g ${object_list}
                OUTPUT_VARIABLE symbols RESULT_VARIABLE nm_result)
if(NOT nm_result EQUAL 0)
  message(FATAL_ERROR "nm failed on the library objects")
endif()

# "_Name@N" -> decoration of Name
string(REGEX MATCHALL "[ \t]T _[A-Za-z_][A-Za-z0-9_]*@[0-9]+" decorated "${symbols}")
foreach(entry IN LISTS decorated)
  string(REGEX REPLACE "^[ \t]T _([A-Za-z_][A-Za-z0-9_]*)@([0-9]+)$" "\\1" name "${entry}")
  string(REGEX REPLACE "^[ \t]T _([A-Za-z_][A-Za-z0-9_]*)@([0-9]+)$" "\\2" bytes "${entry}")
  set(at_${name} "${bytes}")
endforeach()

file(STRINGS "${DEF}" lines)
set(out "")
set(missing "")
set(in_exports FALSE)
foreach(line IN LISTS lines)
  if(line MATCHES "^EXPORTS")
    set(in_exports TRUE)
    string(APPEND out "${line}\n")
  elseif(in_exports AND line MATCHES "^[ \t]+([A-Za-z_][A-Za-z0-9_]*)[ \t]*$")
    set(name "${CMAKE_MATCH_1}")
    if(DEFINED at_${name})
      string(APPEND out "    ${name}@${at_${name}}\n")
    else()
      list(APPEND missing ${name})
    endif()
  else()
    string(APPEND out "${line}\n")
  endif()
endforeach()
if(missing)
  message(FATAL_ERROR "exports without a stdcall definition in the objects: ${missing}")
endif()
file(WRITE "${OUT}.tmp" "${out}")
file(COPY_FILE "${OUT}.tmp" "${OUT}" ONLY_IF_DIFFERENT)
file(REMOVE "${OUT}.tmp")
