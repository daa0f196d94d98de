# The windows on Qt, with the design of every form as :/forms/NAME.ui.

file(GLOB_RECURSE qt_sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_LIST_DIR}/*.cpp)
file(GLOB_RECURSE form_designs CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/src/*.ui)

set(form_list "<RCC><qresource prefix=\"/forms\">\n")
foreach(design IN LISTS form_designs)
    get_filename_component(design_name ${design} NAME)
    string(APPEND form_list "<file alias=\"${design_name}\">${design}</file>\n")
endforeach()
string(APPEND form_list "</qresource></RCC>\n")
file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/forms.qrc CONTENT "${form_list}" @ONLY)
qt_add_resources(form_resources ${PROJECT_BINARY_DIR}/forms.qrc)

add_library(platform_qt STATIC ${qt_sources} ${form_resources})
set_source_files_properties(${form_resources} PROPERTIES SKIP_LINTING ON COMPILE_OPTIONS -w)
target_include_directories(platform_qt PUBLIC ${PROJECT_SOURCE_DIR}/src)
target_compile_definitions(platform_qt PRIVATE QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII)
target_link_libraries(platform_qt
    PUBLIC mailvane_options platform_forms platform_os Qt6::Widgets
    PRIVATE LibXml2::LibXml2 Qt6::Charts Qt6::PrintSupport Qt6::UiTools)

if(TARGET mailvane)
    target_link_libraries(mailvane PRIVATE platform_qt)
    target_compile_definitions(mailvane PRIVATE MAILVANE_WITH_QT)
endif()
