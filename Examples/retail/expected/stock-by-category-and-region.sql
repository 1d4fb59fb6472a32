SELECT category.category_name, region.region_name, sum(inventory.on_hand) AS on_hand
FROM inventory
JOIN product ON inventory.product_key = product.product_key
JOIN subcategory ON product.subcategory_key = subcategory.subcategory_key
JOIN category ON subcategory.category_key = category.category_key
JOIN store ON inventory.store_key = store.store_key
JOIN city ON store.city_key = city.city_key
JOIN region ON city.region_key = region.region_key
GROUP BY category.category_name, region.region_name
ORDER BY category.category_name, region.region_name;
