# Makes the icon file TARGET from the 1024-pixel PNG SOURCE with the system's sips and iconutil.
# WORK is a folder for the sizes in between.
set(iconset ${WORK}/Velto.iconset)
file(REMOVE_RECURSE ${iconset})
file(MAKE_DIRECTORY ${iconset})

function(add_size pixels name)
    execute_process(
        COMMAND sips --resampleHeightWidth ${pixels} ${pixels} ${SOURCE} --out ${iconset}/${name}
        OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
endfunction()

foreach(points 16 32 128 256 512)
    math(EXPR doubled "2 * ${points}")
    add_size(${points} icon_${points}x${points}.png)
    add_size(${doubled} icon_${points}x${points}@2x.png)
endforeach()
execute_process(COMMAND iconutil --convert icns --output ${TARGET} ${iconset}
    COMMAND_ERROR_IS_FATAL ANY)
