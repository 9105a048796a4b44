# A product is a folder: products/<slug>/ holds its description
# (config.plist), its manual's texts (manual.plist), its unit (unit/*.cpp), its
# sketch drawing (sketch/*.cpp, optional) and its tests, and its
# CMakeLists.txt calls zel_add_product(). Everything the product ships is
# built from that folder and the generic layers:
#
#   zel_add_product(<slug> UNIT <class> <header> [SKETCH <class> <header>] [DEFAULT])
#
# <slug> is the description's pluginURLSlug; UNIT names the unit's class
# (implementing dsp/ZelAudioUnit.h) and its header, SKETCH the sketch's class
# (a ZelParameterSketch made from (CGRect, const ZelConfig*)) and its header,
# both headers relative to the product's folder. DEFAULT marks the product the
# build's tools show when they are not told which (zel-drive, the generic
# tests); one product says it.
#
# Targets and files (NAME being <slug>):
#   NAME_table   the parameter table and LV2 URI header, generated from the
#                description (headers only: dsp/<ClassPrefix>ParameterTable.h,
#                lv2/common/<ClassPrefix>URIs.h in generated/products/NAME)
#   NAME_unit    the unit's library (unit/*.cpp)
#   NAME_sketch  the sketch's library (sketch/*.cpp), with SKETCH
#   NAME_dsp     build/NAME.lv2/NAME_dsp.so, the LV2 plug-ins
#   NAME_ui      build/NAME.lv2/NAME_ui.so, the LV2 editor (with X11)
#   NAME_lv2     the whole bundle build/NAME.lv2 (Turtle, presets, resources,
#                manual)
#   NAME         build/bin/NAME, the standalone app with `process`
#   NAME_manual  the manual (PDF, HTML) in the bundle and bin/resources/NAME
# Variables set in the caller's scope: ZEL_PRODUCT_<NAME>_BUNDLE (the bundle's
# folder) and ZEL_PRODUCT_<NAME>_RESOURCES (a resources folder laid out like
# the bundle's, for tests that read the product from the build tree).
#
# zel_use_product(<target> <slug> [UNIT] [SKETCH]) links the product's record
# (dsp/ZelProduct.h) into a program that holds several products or tests
# one: with UNIT it can make the unit, with SKETCH the host view draws its
# sketch.

find_package(Python3 REQUIRED COMPONENTS Interpreter)

set(ZEL_PRODUCT_TEMPLATES ${CMAKE_CURRENT_LIST_DIR})
# The editor's source tree (the generators, the adapters, the resources),
# also when a product is built outside it (cmake/ZelProductProject).
get_filename_component(ZEL_SOURCE_DIR ${CMAKE_CURRENT_LIST_DIR} DIRECTORY)

# The metadata the build names things by, read at configure time.
function(_zel_product_metadata config prefix)
  execute_process(
    COMMAND ${Python3_EXECUTABLE} -c
      "import plistlib,sys; m=plistlib.load(open(sys.argv[1],'rb')).get('metadata',{}); print(';'.join(str(m.get(k,'')) for k in ('pluginURLSlug','classPrefix','pluginName')))"
      ${config}
    OUTPUT_VARIABLE out RESULT_VARIABLE status ERROR_VARIABLE error OUTPUT_STRIP_TRAILING_WHITESPACE)
  if(NOT status EQUAL 0)
    message(FATAL_ERROR "cannot read the description ${config}: ${error}")
  endif()
  list(GET out 0 slug)
  list(GET out 1 classPrefix)
  list(GET out 2 name)
  set(${prefix}_SLUG ${slug} PARENT_SCOPE)
  set(${prefix}_CLASS_PREFIX ${classPrefix} PARENT_SCOPE)
  set(${prefix}_NAME ${name} PARENT_SCOPE)
endfunction()

# The product's record (and sketch registration) compiled into `target`.
function(zel_use_product target slug)
  cmake_parse_arguments(ARG "UNIT;SKETCH" "" "" ${ARGN})
  get_property(record GLOBAL PROPERTY ZEL_PRODUCT_${slug}_RECORD)
  get_property(sketchRecord GLOBAL PROPERTY ZEL_PRODUCT_${slug}_SKETCH_RECORD)
  if(NOT record)
    message(FATAL_ERROR "zel_use_product: no product ${slug}")
  endif()
  if(ARG_UNIT)
    # A copy per way of building it: with the unit, and without.
    set(source ${CMAKE_BINARY_DIR}/generated/products/${slug}/ZelProductRecordWithUnit.cpp)
    target_link_libraries(${target} PRIVATE ${slug}_unit)
  else()
    set(source ${record})
  endif()
  target_sources(${target} PRIVATE ${source})
  target_link_libraries(${target} PRIVATE ${slug}_table zel_dsp)
  if(ARG_SKETCH AND sketchRecord)
    target_sources(${target} PRIVATE ${sketchRecord})
    target_link_libraries(${target} PRIVATE ${slug}_sketch zel_host_bridge)
  endif()
endfunction()

function(zel_add_product slug)
  cmake_parse_arguments(ARG "DEFAULT" "" "UNIT;SKETCH" ${ARGN})
  set(dir ${CMAKE_CURRENT_SOURCE_DIR})
  set(config ${dir}/config.plist)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${config})
  _zel_product_metadata(${config} META)
  if(NOT META_SLUG STREQUAL slug)
    message(FATAL_ERROR "${config}: pluginURLSlug is \"${META_SLUG}\", but the folder calls the product \"${slug}\"")
  endif()
  list(LENGTH ARG_UNIT unitWords)
  if(NOT unitWords EQUAL 2)
    message(FATAL_ERROR "zel_add_product(${slug}): UNIT <class> <header> is required")
  endif()
  list(GET ARG_UNIT 0 unitClass)
  list(GET ARG_UNIT 1 unitHeader)
  get_filename_component(unitHeader ${unitHeader} ABSOLUTE BASE_DIR ${dir})

  set(gen ${CMAKE_BINARY_DIR}/generated/products/${slug})
  set(bundle ${CMAKE_BINARY_DIR}/${slug}.lv2)
  set(tableHeader ${gen}/dsp/${META_CLASS_PREFIX}ParameterTable.h)
  set(urisHeader ${gen}/lv2/common/${META_CLASS_PREFIX}URIs.h)
  set(turtle ${bundle}/manifest.ttl ${bundle}/${slug}.ttl ${bundle}/presets.ttl)
  # The editor's library needs the X11 backend; without it the bundle
  # announces no editor.
  if(TARGET zel_lv2_connection AND TARGET zel_toolkit_x11)
    set(hasUI TRUE)
    list(APPEND turtle ${bundle}/${slug}_ui.ttl)
    set(noUI "")
  else()
    set(hasUI FALSE)
    set(noUI --no-ui)
  endif()

  # ---- Generated from the description: the table, the URIs, the Turtle.
  add_custom_command(
    OUTPUT ${tableHeader}
    COMMAND ${CMAKE_COMMAND} -E make_directory ${gen}/dsp
    COMMAND Python3::Interpreter ${ZEL_SOURCE_DIR}/dsp/tools/make_parameter_table.py ${config} ${tableHeader}
    DEPENDS ${ZEL_SOURCE_DIR}/dsp/tools/make_parameter_table.py ${config} ${ZEL_SOURCE_DIR}/model/ZelDescriptionSchema.h
            ${ZEL_SOURCE_DIR}/model/tools/zel_description_schema.py
    COMMENT "Generating ${slug}'s parameter table"
    VERBATIM)
  add_custom_command(
    OUTPUT ${turtle} ${urisHeader}
    COMMAND Python3::Interpreter ${ZEL_SOURCE_DIR}/lv2/tools/make_turtle.py ${config} ${bundle} --header ${urisHeader} ${noUI}
    DEPENDS ${ZEL_SOURCE_DIR}/lv2/tools/make_turtle.py ${ZEL_SOURCE_DIR}/lv2/tools/meter_ports.py
            ${ZEL_SOURCE_DIR}/dsp/tools/make_parameter_table.py ${config}
            ${ZEL_SOURCE_DIR}/model/ZelDescriptionSchema.h ${ZEL_SOURCE_DIR}/model/tools/zel_description_schema.py
    COMMENT "Generating ${slug}'s LV2 Turtle files and URI header"
    VERBATIM)
  add_custom_target(${slug}_generated DEPENDS ${tableHeader} ${urisHeader})
  add_library(${slug}_table INTERFACE)
  add_dependencies(${slug}_table ${slug}_generated)
  target_include_directories(${slug}_table INTERFACE ${gen} ${ZEL_SOURCE_DIR} ${dir})
  target_compile_definitions(${slug}_table INTERFACE ZEL_ABI_TAG=${ZEL_ABI_TAG})

  # The record, twice: without the unit (the editor's side) and with it.
  set(ZEL_P_SLUG ${slug})
  set(ZEL_P_CLASS_PREFIX ${META_CLASS_PREFIX})
  set(ZEL_P_UNIT_CLASS ${unitClass})
  set(ZEL_P_UNIT_HEADER ${unitHeader})
  string(REPLACE "-" "_" ZEL_P_LV2_NAMESPACE "zel_${slug}_lv2")
  if(ARG_DEFAULT)
    set(ZEL_P_IS_DEFAULT true)
  else()
    set(ZEL_P_IS_DEFAULT false)
  endif()
  configure_file(${ZEL_PRODUCT_TEMPLATES}/ZelProductRecord.cpp.in ${gen}/ZelProductRecord.cpp @ONLY)
  file(WRITE ${gen}/ZelProductRecordWithUnit.cpp.new
       "// Generated by zel_add_product: the record of ${slug}, able to make its unit.\n"
       "#define ZEL_PRODUCT_WITH_UNIT 1\n#include \"ZelProductRecord.cpp\"\n")
  configure_file(${gen}/ZelProductRecordWithUnit.cpp.new ${gen}/ZelProductRecordWithUnit.cpp COPYONLY)
  set_property(GLOBAL PROPERTY ZEL_PRODUCT_${slug}_RECORD ${gen}/ZelProductRecord.cpp)

  # ---- The unit and the sketch.
  file(GLOB unitSources CONFIGURE_DEPENDS ${dir}/unit/*.cpp)
  add_library(${slug}_unit STATIC ${unitSources})
  target_link_libraries(${slug}_unit PUBLIC ${slug}_table zel_dsp)
  # Plain IEEE arithmetic, vectorised where it pays; no fast-math.
  target_compile_options(${slug}_unit PRIVATE -O3)

  list(LENGTH ARG_SKETCH sketchWords)
  if(sketchWords EQUAL 2)
    list(GET ARG_SKETCH 0 ZEL_P_SKETCH_CLASS)
    list(GET ARG_SKETCH 1 ZEL_P_SKETCH_HEADER)
    get_filename_component(ZEL_P_SKETCH_HEADER ${ZEL_P_SKETCH_HEADER} ABSOLUTE BASE_DIR ${dir})
    file(GLOB sketchSources CONFIGURE_DEPENDS ${dir}/sketch/*.cpp)
    add_library(${slug}_sketch STATIC ${sketchSources})
    target_link_libraries(${slug}_sketch PUBLIC ${slug}_table zel_sketch)
    configure_file(${ZEL_PRODUCT_TEMPLATES}/ZelProductSketch.cpp.in ${gen}/ZelProductSketch.cpp @ONLY)
    set_property(GLOBAL PROPERTY ZEL_PRODUCT_${slug}_SKETCH_RECORD ${gen}/ZelProductSketch.cpp)
  elseif(sketchWords GREATER 0)
    message(FATAL_ERROR "zel_add_product(${slug}): SKETCH takes <class> <header>")
  endif()

  # ---- The resources, laid out like the bundle's: the description and the
  # manual's texts beside the editor's textures and icon font.
  set(resources ${CMAKE_BINARY_DIR}/products/${slug}/resources)
  file(MAKE_DIRECTORY ${resources})
  foreach(file IN ITEMS noised-ottoman.jpg noise_dark.png Zel-Icons-Regular.otf)
    file(CREATE_LINK ${ZEL_SOURCE_DIR}/resources/${file} ${resources}/${file} SYMBOLIC)
  endforeach()
  foreach(file IN ITEMS config.plist manual.plist)
    file(CREATE_LINK ${dir}/${file} ${resources}/${file} SYMBOLIC)
  endforeach()
  set(ZEL_PRODUCT_${slug}_RESOURCES ${resources} PARENT_SCOPE)
  set(ZEL_PRODUCT_${slug}_BUNDLE ${bundle} PARENT_SCOPE)
  if(ARG_DEFAULT)
    # The build's default resources folder (ZelBundle's, ZEL_RESOURCES_DIR).
    foreach(file IN ITEMS config.plist manual.plist)
      file(CREATE_LINK ${dir}/${file} ${ZEL_RESOURCES_DIR}/${file} SYMBOLIC)
    endforeach()
  endif()

  # ---- The LV2 bundle.
  set(bundleResources config.plist)
  set(bundleOutputs ${turtle})
  add_custom_command(
    OUTPUT ${bundle}/resources/config.plist
    COMMAND ${CMAKE_COMMAND} -E copy_if_different ${config} ${bundle}/resources/config.plist
    DEPENDS ${config}
    VERBATIM)
  list(APPEND bundleOutputs ${bundle}/resources/config.plist)
  foreach(file IN ITEMS noised-ottoman.jpg noise_dark.png Zel-Icons-Regular.otf)
    add_custom_command(
      OUTPUT ${bundle}/resources/${file}
      COMMAND ${CMAKE_COMMAND} -E copy_if_different ${ZEL_SOURCE_DIR}/resources/${file} ${bundle}/resources/${file}
      DEPENDS ${ZEL_SOURCE_DIR}/resources/${file}
      VERBATIM)
    list(APPEND bundleOutputs ${bundle}/resources/${file})
  endforeach()
  # The description again as a binary property list, which the editor
  # prefers (ZelConfig::configNamed).
  add_custom_command(
    OUTPUT ${bundle}/resources/config.bplist
    COMMAND zel-binary-plist ${config} ${bundle}/resources/config.bplist
    DEPENDS zel-binary-plist ${config}
    COMMENT "Writing ${slug}'s description as a binary property list"
    VERBATIM)
  list(APPEND bundleOutputs ${bundle}/resources/config.bplist)
  add_custom_target(${slug}_lv2_data ALL DEPENDS ${bundleOutputs})

  add_library(${slug}_dsp MODULE ${ZEL_SOURCE_DIR}/lv2/dsp/ZelLV2Plugin.cpp)
  zel_use_product(${slug}_dsp ${slug} UNIT)
  target_link_libraries(${slug}_dsp PRIVATE PkgConfig::LV2)
  set_target_properties(${slug}_dsp PROPERTIES PREFIX "" LIBRARY_OUTPUT_DIRECTORY ${bundle}
    LINK_DEPENDS ${ZEL_SOURCE_DIR}/lv2/dsp/zel_dsp.map)
  # Only lv2_descriptor leaves the library: everything else is local, so two
  # products (or two versions) in one host never meet.
  target_link_options(${slug}_dsp PRIVATE
    -Wl,--version-script=${ZEL_SOURCE_DIR}/lv2/dsp/zel_dsp.map -Wl,--exclude-libs,ALL -Wl,-z,defs)
  add_dependencies(${slug}_dsp ${slug}_lv2_data)
  add_custom_target(${slug}_lv2 DEPENDS ${slug}_dsp ${slug}_lv2_data)

  if(hasUI)
    add_library(${slug}_ui MODULE ${ZEL_SOURCE_DIR}/lv2/ui/ZelLV2UI.cpp)
    zel_use_product(${slug}_ui ${slug} SKETCH)
    target_link_libraries(${slug}_ui PRIVATE zel_lv2_connection zel_toolkit_x11 zel_toolkit_atspi)
    # -z nodelete: hosts that unload UI libraries would leave pango and GLib
    # with types registered by code that is gone; the library stays loaded.
    target_link_options(${slug}_ui PRIVATE -Wl,-z,nodelete
      -Wl,--version-script=${ZEL_SOURCE_DIR}/lv2/ui/zel_ui.map -Wl,--exclude-libs,ALL -Wl,-z,defs)
    set_target_properties(${slug}_ui PROPERTIES PREFIX "" LIBRARY_OUTPUT_DIRECTORY ${bundle}
      LINK_DEPENDS ${ZEL_SOURCE_DIR}/lv2/ui/zel_ui.map)
    add_dependencies(${slug}_ui ${slug}_lv2_data)
    add_dependencies(${slug}_lv2 ${slug}_ui)
  endif()

  # ---- The standalone app, with `process`, and the manual.
  if(TARGET zel_standalone AND TARGET zel_process)
    add_executable(${slug} ${ZEL_SOURCE_DIR}/app/standalone/ZelStandaloneMain.cpp)
    zel_use_product(${slug} ${slug} UNIT SKETCH)
    target_link_libraries(${slug} PRIVATE zel_app_common zel_process zel_standalone)
    if(TARGET zel_toolkit_x11)
      target_link_libraries(${slug} PRIVATE zel_toolkit_x11 zel_toolkit_atspi)
      target_compile_definitions(${slug} PRIVATE ZEL_APP_HAVE_X11)
    endif()
    # Live sound through JACK (libjack-jackd2-dev); without it the app has
    # the editor only. Only the adapter in app/standalone includes <jack/...>.
    if(TARGET PkgConfig::JACK)
      target_sources(${slug} PRIVATE ${ZEL_SOURCE_DIR}/app/standalone/ZelJackAudio.cpp)
      target_link_libraries(${slug} PRIVATE PkgConfig::JACK)
      target_compile_definitions(${slug} PRIVATE ZEL_APP_HAVE_JACK)
    endif()
  endif()

  if(TARGET zel-make-manual)
    # bin/resources/NAME: the app's resources folder (ZelAppResources.h).
    set(appResources ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/resources/${slug})
    file(MAKE_DIRECTORY ${appResources})
    foreach(file IN ITEMS noised-ottoman.jpg noise_dark.png Zel-Icons-Regular.otf)
      file(CREATE_LINK ${ZEL_SOURCE_DIR}/resources/${file} ${appResources}/${file} SYMBOLIC)
    endforeach()
    file(CREATE_LINK ${config} ${appResources}/config.plist SYMBOLIC)
    set(manual ${META_CLASS_PREFIX}_Manual)
    set(manualOutputs ${bundle}/resources/${manual}.pdf ${bundle}/resources/${manual}.html
                      ${appResources}/${manual}.pdf ${appResources}/${manual}.html)
    add_custom_command(
      OUTPUT ${manualOutputs}
      COMMAND ${CMAKE_COMMAND} -E make_directory ${bundle}/resources
      COMMAND zel-make-manual --config ${config} --texts ${dir}/manual.plist
              --pdf ${bundle}/resources/${manual}.pdf --html ${bundle}/resources/${manual}.html
      COMMAND ${CMAKE_COMMAND} -E copy_if_different ${bundle}/resources/${manual}.pdf
              ${bundle}/resources/${manual}.html ${appResources}/
      DEPENDS zel-make-manual ${config} ${dir}/manual.plist
      COMMENT "Making ${slug}'s manual (PDF and HTML)"
      VERBATIM)
    add_custom_target(${slug}_manual ALL DEPENDS ${manualOutputs})
    add_dependencies(${slug}_lv2 ${slug}_manual)
    if(TARGET ${slug})
      add_dependencies(${slug} ${slug}_manual)
    endif()
    if(ARG_DEFAULT AND TARGET zel-drive)
      add_dependencies(zel-drive ${slug}_manual)
    endif()
  endif()

  # Every program that shows any product holds this one too.
  foreach(tool IN ITEMS zel-drive zel-make-manual)
    if(TARGET ${tool})
      zel_use_product(${tool} ${slug} SKETCH)
    endif()
  endforeach()
endfunction()
