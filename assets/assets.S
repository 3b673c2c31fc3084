# The banner and, on the byte after its last, the module: no alignment, nothing in between.

        .section .rdata, "dr"
        .globl  BannerData
        .globl  ModuleData
        .globl  ModuleDataEnd

BannerData:
        .incbin "assets/banner.bmp"
ModuleData:
        .incbin "assets/module.xm"
ModuleDataEnd:
