import com.sun.jna.Structure;
import com.sun.jna.platform.unix.solaris.LibKstat;
import java.lang.reflect.Field;
import java.lang.reflect.Method;
import java.util.List;

/** Prints JNA's kernel statistics: "constant NAME VALUE", "size STRUCTURE BYTES", "field STRUCTURE NAME OFFSET BYTES". */
final class KstatLayouts {
    public static void main(String[] arguments) throws ReflectiveOperationException {
        for (Field field : LibKstat.class.getFields()) {
            if (field.getType().isPrimitive()) {
                System.out.println("constant " + field.getName() + " " + field.get(null));
            }
        }
        Method order = method("getFieldOrder");
        Method offset = method("fieldOffset", String.class);
        Method size = method("getNativeSize", Class.class, Object.class);
        for (Class<?> type : LibKstat.class.getClasses()) {
            Structure structure = (Structure) type.getConstructor().newInstance();
            System.out.println("size " + type.getSimpleName() + " " + structure.size());
            for (Object name : (List<?>) order.invoke(structure)) {
                Field field = type.getField((String) name);
                System.out.println("field " + type.getSimpleName() + " " + name + " " + offset.invoke(structure, name)
                        + " " + size.invoke(structure, field.getType(), field.get(structure)));
            }
        }
    }

    private static Method method(String name, Class<?>... parameters) throws ReflectiveOperationException {
        Method method = Structure.class.getDeclaredMethod(name, parameters);
        method.setAccessible(true);
        return method;
    }
}
