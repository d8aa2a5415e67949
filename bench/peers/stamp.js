// mutool run stamp.js IN.pdf STAMP.png OUT.pdf: the picture on every page, as quickly as the tool can do it.
var file = new PDFDocument(scriptArgs[0])
var picture = file.addImage(new Image(scriptArgs[1]))
var before = file.addStream("q\n", {})
var after = file.addStream("\nQ q 200 0 0 80 200 642 cm /StampPicture Do Q\n", {})
var count = file.countPages()
for (var i = 0; i < count; ++i) {
    var page = file.findPage(i)
    var resources = page.getInheritable ? page.getInheritable("Resources") : page.get("Resources")
    if (!resources || resources.isNull()) {
        resources = file.newDictionary()
        page.put("Resources", resources)
    }
    var pictures = resources.get("XObject")
    if (!pictures || pictures.isNull()) {
        pictures = file.newDictionary()
        resources.put("XObject", pictures)
    }
    pictures.put("StampPicture", picture)
    var contents = file.newArray()
    contents.push(before)
    var old = page.get("Contents")
    if (old && old.isArray())
        for (var k = 0; k < old.length; ++k)
            contents.push(old.get(k))
    else if (old)
        contents.push(old)
    contents.push(after)
    page.put("Contents", contents)
}
file.save(scriptArgs[2], "")
